#include "fuzz/FuzzedServer.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <future>
#include <random>
#include <thread>

#include <boost/json/parse.hpp>

#include "server/api/PageResource.h"
#include "server/history/History.h"
#include "server/http/Conditional.h"

namespace fs = std::filesystem;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::Message;

namespace {

constexpr std::chrono::seconds patience{5};

fs::path newDirectory() {
    fs::path made =
        fs::temp_directory_path() / ("fuzz-" + std::to_string(std::random_device()()));
    fs::create_directories(made);
    return made;
}

template <class Made>
Made made(int number) {
    Made event;
    event.set_name("EVENT");
    event.set_time_raised(ZrHmiSrv::Timestamp(1'700'000'000'000'000'000 + number));
    auto& parameters = event.payload();
    parameters.insert("targetName", number % 2 == 0 ? "A" : "B");
    parameters.insert("eventClass", "{00000001-0000-0000-0000-00000000ABCD}");
    parameters.insert("eventId", number);
    parameters.insert("sourceName", "\"Stra\xc3\x9f" "e\"\n\xff");
    parameters.insert("value", number * 0.1);
    return event;
}

Alarm alarmOf(int id) {
    Alarm alarm = made<Alarm>(id);
    alarm.set_id(id);
    alarm.set_confirmation_state(ZrHmiSrv::AlarmConfirmationState::pending);
    return alarm;
}

hmi::TextsPtr someTexts() {
    auto texts = std::make_shared<hmi::EventTexts>();
    texts->text = ZrHmiSrv::Text("Product tank below 15 %");
    return texts;
}

/// One for all servers: no request changes it.
hmi::IHistory* sharedHistory() {
    struct Kept {
        ~Kept() {
            history->stop();
            std::error_code ignored;
            fs::remove_all(directory, ignored);
        }
        fs::path directory = newDirectory();
        std::unique_ptr<hmi::IHistory> history = hmi::openHistory(
            {.file = directory / "history.db"},
            {[](std::span<const hmi::EventRecordPtr> events, std::chrono::milliseconds) {
                 return std::vector<hmi::TextsPtr>(events.size(), someTexts());
             },
             [] { return std::vector<hmi::EventRecordPtr>(); },
             [](const hmi::HistoryStatus&) {}});
    };
    static Kept kept;
    static const bool isFilled = [] {
        kept.history->start();
        for (int id = 1; id <= 300; ++id)
            kept.history->post(
                {hmi::ChangeType::raised, std::make_shared<const hmi::EventRecord>(
                                              hmi::EventContent{alarmOf(id), {}}, id)});
        while (kept.history->status().queued > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return true;
    }();
    return isFilled ? kept.history.get() : nullptr;
}

}  // namespace

FuzzedServer::Files::Files()
    : directory(newDirectory()),
      configuration(directory / "config.json"),
      users(directory / "users.json") {
    std::ofstream(configuration) << R"({"TIMEOUT": "PT5S", "LIMIT_EVENT_COUNT": 10,
        "TARGET_SYSTEMS": {"A": {"ADDRESS": "local", "ENABLED": true}}})";
    // The password is "secret", and quickly checked.
    std::ofstream(users) << R"({"users": {
        "view": {"role": "view", "password": "$argon2id$v=19$m=8,t=1,p=1$sEYRmF1q5GYmyr43vDmcUA$TMSkUfRaegSfL9j68PXoHyzU3R4Zj4YfTLiuHMWpfvY"},
        "engineer": {"role": "engineer", "password": "$argon2id$v=19$m=8,t=1,p=1$sEYRmF1q5GYmyr43vDmcUA$TMSkUfRaegSfL9j68PXoHyzU3R4Zj4YfTLiuHMWpfvY"}}})";
}

FuzzedServer::Files::~Files() {
    std::error_code ignored;
    fs::remove_all(directory, ignored);
}

FuzzedServer::FuzzedServer()
    : texts([](const hmi::EventRecord&, const std::string&) { return *someTexts(); }, lanes, feed),
      backend(files.configuration, ZrHmiSrv::Context("Fuzz"), feed, metrics,
              [](const auto&) { return true; }),
      confirmations(
          backend.events, metrics,
          [this](const Alarm& alarm) { return backend.calls.confirm(alarm); },
          [] { return patience; }),
      history(sharedHistory(), guarded),
      metricsResource(metrics, backend.events, backend.calls, feed, lanes, texts,
                      sharedHistory()) {
    feed.add("targets", targets);
    feed.add("texts", texts);
    feed.add("statistics", raises);
    about.addRoutes(router);
    session.addRoutes(router);
    events.addRoutes(router);
    confirmation.addRoutes(router);
    targetsResource.addRoutes(router);
    statistics.addRoutes(router);
    config.addRoutes(router);
    check.addRoutes(router);
    commands.addRoutes(router);
    log.addRoutes(router);
    history.addRoutes(router);
    metricsResource.addRoutes(router);
    hmi::PageResource::addRoutes(router);
    fill();
}

FuzzedServer::~FuzzedServer() {
    guarded.stop();
    texts.stop();
    lanes.stop();
    lanes.join();
}

void FuzzedServer::fill() {
    for (int id = 1; id <= 200; ++id)
        backend.events.raise(alarmOf(id));
    Message message = made<Message>(1);
    ZrHmiSrv::Value deep("end");
    for (int level = 0; level < 20; ++level) {
        ZrHmiSrv::Value around;
        around.insert("in", std::move(deep));
        deep = std::move(around);
    }
    message.payload().insert("deep", std::move(deep));
    backend.events.add(message);
    message.set_name("TARGET_SYSTEM_CONNECTED");
    message.parameters().insert("0", "A");
    backend.log.add(message);
    hmi::Request signedIn;
    signedIn.user = "engineer";
    cookie = guarded.openSession(signedIn);
}

void FuzzedServer::serve(hmi::Request request, const std::string& target) {
    request.peer = "127.0.0.1";
    if (request.cookie == "hmi-session=own")
        request.cookie = cookie;
    if (!serveAs(guarded, request, target))
        serveAs(open, std::move(request), target);
}

/// False when it was refused.
bool FuzzedServer::serveAs(hmi::AccessControl& access, hmi::Request request,
                           const std::string& target) {
    std::promise<std::optional<hmi::Request>> admitted;
    access.admit(std::move(request), target, [&](hmi::Request by, const auto& refusal) {
        admitted.set_value(refusal ? std::nullopt : std::optional(std::move(by)));
    });
    const auto served = admitted.get_future().get();
    if (served)
        handle(*served);
    return served.has_value();
}

void FuzzedServer::handle(const hmi::Request& request) {
    try {
        const hmi::Route& route = router.find(request);
        if (route.placement)
            route.placement(request);
        if (!route.lateHandler)
            return answer(request, route.handler(request));
        std::promise<hmi::Response> late;
        route.lateHandler(request, [&](const auto& make) {
            try {
                late.set_value(make());
            } catch (...) {
                late.set_exception(std::current_exception());
            }
        });
        answer(request, late.get_future().get());
    } catch (const hmi::RequestError& error) {
        if (error.status < 400 || error.status > 599)
            std::abort();
    }
}

void FuzzedServer::answer(const hmi::Request& request, hmi::Response response) {
    const bool isJson = response.contentType == "application/json";
    const bool isPacked = request.acceptsGzip;
    if (isPacked)
        hmi::fit(request, response);
    while (response.parts) {
        const std::string part = response.parts();
        response.body += part;
        if (part.empty())
            break;
    }
    boost::json::error_code error;
    boost::json::parse_options options;
    options.max_depth = 1000;
    if (isJson && !isPacked)
        boost::json::parse(response.body, error, {}, options);
    if (error)
        std::abort();
}
