#include "server/Application.h"

#include <cstdio>
#include <limits>
#include <memory>

#include <boost/asio/ip/address.hpp>

#include "server/Log.h"
#include "server/StartError.h"
#include "server/StopDeadline.h"
#include "server/api/PageResource.h"

namespace hmi {

namespace {

/// The name under which the extension is known: its file's, without what a system adds to it.
ZrHmiSrv::Text domainOf(const std::filesystem::path& extension) {
    std::string name = extension.stem().string();
    if (name.starts_with("lib"))
        name.erase(0, 3);
    return ZrHmiSrv::Text(name);
}

/// Nobody is asked who they are: then only this machine may ask.
void expectAllowedAddress(const Options& options) {
    boost::system::error_code error;
    const auto address = boost::asio::ip::make_address(options.address, error);
    if (!error && !address.is_loopback() && options.users.empty() && !options.open)
        throw StartError("--address: " + options.address +
                         " lets everybody do everything; --users says who may do what, --open "
                         "means it");
}

}  // namespace

Application::Application(const Options& given)
    : options(given),
      texts([this](const EventRecord& event,
                   const std::string& locale) { return backend.calls.localize(event, locale); },
            lanes, feed),
      history(makeHistory()),
      backend(options.config, ZrHmiSrv::Context(domainOf(options.extension)), feed, metrics,
              [this](const std::string& target) { return targets.isImported(target); }),
      confirmations(
          backend.events, metrics,
          [this](const ZrHmiSrv::Alarm& alarm) { return backend.calls.confirm(alarm); },
          [this] { return backend.timeout() + std::chrono::seconds(5); }),
      targetWatch(
          targets, backend.events, feed,
          {[this] { return backend.calls.diagnostics(); }, [this] { return backend.addresses(); }}),
      access(OriginPolicy(options.allowedHosts), options.users, audit),
      dispatcher(router, lanes, metrics, audit),
      server(io.context(),
             {options.address, options.port, options.certificate, options.key,
              options.trustedProxies},
             {access, dispatcher, hub}) {
    expectAllowedAddress(options);
    feed.add("targets", targets);
    feed.add("texts", texts);  // before those that tell readers to ask again
    feed.add("statistics", raises);
    feed.add("stream", hub);
    if (!history)
        return;
    feed.add("history", *history);
    history->start();
    audit.setKeeper([this](const AuditEntry& entry) { history->keep(entry); });
}

std::unique_ptr<IHistory> Application::makeHistory() {
    if (options.history.empty())
        return nullptr;
    return openHistory(
        {.file = options.history,
         .days = options.historyDays,
         .bytes = options.historySize << 20},
        {[this](std::span<const EventRecordPtr> events, std::chrono::milliseconds wait) {
             return texts.get(events, options.historyLocale, wait);
         },
         [this] {
             constexpr std::size_t all = std::numeric_limits<std::size_t>::max();
             return backend.events.select({}, 0, all).events;
         },
         [this](const HistoryStatus& status) {
             feed.post({.type = ChangeType::history,
                        .history = std::make_shared<const HistoryStatus>(status)});
         }});
}

Application::~Application() {
    lanes.stop();
    lanes.join();
    texts.stop();  // it tells the feed, whose listeners go before it
}

void Application::addRoutes() {
    aboutResource.addRoutes(router);
    sessionResource.addRoutes(router);
    eventsResource.addRoutes(router);
    confirmationsResource.addRoutes(router);
    targetsResource.addRoutes(router);
    statisticsResource.addRoutes(router);
    configResource.addRoutes(router);
    configCheckResource.addRoutes(router);
    commandsResource.addRoutes(router);
    logResource.addRoutes(router);
    historyResource.addRoutes(router);
    metricsResource.addRoutes(router);
    PageResource::addRoutes(router);
    if (simulator) {
        simulatorResource = std::make_unique<SimulatorResource>(*simulator);
        simulatorResource->addRoutes(router);
    }
    router.add(Method::get, "/api/stream", [](const Request&) {
        Response response = Response::error(426, "the stream is for WebSocket clients");
        response.headers.emplace_back("Upgrade", "websocket");
        return response;
    });
}

void Application::run() {
    StopSignal signal(io.context());
    reload.emplace(io.context(), [this] {
        server.reload();
        access.reload();
    });
    if (!options.plant.empty()) {
        simulator = std::make_unique<SimulatorControl>(options.extension);
        simulator->loadPlant(options.plant);
    }
    addRoutes();
    server.start();
    hmi::log(LogLevel::debug, "the extension starts; " + server.url() + "/readyz says when it has");
    // On a thread of its own, so that a signal is heard meanwhile.
    std::future<void> started = std::async(std::launch::async, [&] {
        const std::shared_ptr<void> atTheEnd(nullptr, [&](void*) { signal.wake(); });
        backend.start(options.extension);
    });
    if (!signal.wait()) {
        try {
            started.get();
        } catch (const StartError&) {
            stop(started);
            throw;
        }
        serve(signal);
    }
    hmi::log(LogLevel::info, "stopping");
    const StopDeadline deadline(backend.timeout() + std::chrono::milliseconds(1500),
                                [this] { return lanes.running(); });
    stop(started);
}

void Application::serve(StopSignal& signal) {
    targetWatch.start();
    dispatcher.open();
    aboutResource.setReady(true);
    std::printf("listening on %s\n", server.url().c_str());
    std::fflush(stdout);
    while (!signal.wait()) {
    }
}

void Application::stop(std::future<void>& started) {
    aboutResource.setReady(false);
    server.stop();
    access.stop();
    targetWatch.stop();
    texts.stop();
    lanes.stop();
    // At once, and not when the calls are over: it is what makes them end.
    backend.shutDownExtension();
    try {
        if (started.valid())
            started.get();
    } catch (const StartError& error) {
        hmi::log(LogLevel::info, error.what());
    }
    backend.stop();
    lanes.join();
    audit.recordRests(StrangerTally::Clock::time_point::max());
    if (history)
        history->stop();
    simulator.reset();
    io.stop(std::chrono::seconds(1));
}

}  // namespace hmi
