#include "server/Application.h"

#include <cstdio>

#include "server/Log.h"
#include "server/StartError.h"
#include "server/StopSignal.h"
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

}  // namespace

Application::Application(const Options& given)
    : options(given),
      configuration(options.config),
      context(domainOf(options.extension)),
      host({events, log, configuration, listeners, metrics, [this] { refresher.request(); }}),
      dispatcher(router, OriginPolicy(options.address), lanes, metrics),
      server(io.context(), options.address, options.port, dispatcher, hub) {}

void Application::addRoutes() {
    eventsResource.addRoutes(router);
    configResource.addRoutes(router);
    commandsResource.addRoutes(router);
    logResource.addRoutes(router);
    metricsResource.addRoutes(router);
    PageResource::addRoutes(router);
    if (simulator) {
        simulatorResource = std::make_unique<SimulatorResource>(*simulator);
        simulatorResource->addRoutes(router);
    }
    router.add(Method::get, "/api/stream", Lane::local, [](const Request&) {
        return Response::error(426, "the stream is for WebSocket clients");
    });
}

void Application::startExtension() {
    if (!options.plant.empty()) {
        simulator = std::make_unique<SimulatorControl>(options.extension);
        simulator->loadPlant(options.plant);
    }
    extension = std::make_unique<ExtensionLibrary>(options.extension, host);
    extension->init(context);
    refresher.start();
}

void Application::stopExtension() {
    refresher.stop();
    calls.shutdown();
    listeners.clear();
    extension.reset();
    simulator.reset();
}

void Application::run() {
    StopSignal stop(io.context());
    try {
        startExtension();
    } catch (...) {
        listeners.clear();
        throw;
    }
    addRoutes();
    server.start();
    std::printf("listening on %s\n", server.url().c_str());
    std::fflush(stdout);
    stop.wait();
    hmi::log(LogLevel::info, "stopping");
    server.stop();
    lanes.join();
    stopExtension();
    io.stop(std::chrono::seconds(1));
}

}  // namespace hmi
