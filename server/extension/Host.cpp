#include "server/extension/Host.h"

#include <chrono>
#include <exception>
#include <string>
#include <utility>

#include <boost/json/serialize.hpp>

#include "server/Log.h"
#include "server/json/ValueJson.h"

namespace hmi {

using ZrHmiSrv::AlarmOperation;
using ZrHmiSrv::Context;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::IZrHmiSrvListener;
using ZrHmiSrv::Message;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Value;

namespace {

/// Measures what a notified event takes.
class Stopwatch {
public:
    explicit Stopwatch(Metrics& metrics) : metrics(metrics) {}
    ~Stopwatch() { metrics.observeNotification(std::chrono::steady_clock::now() - start); }
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

private:
    Metrics& metrics;
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

}  // namespace

/// Counts a call and keeps exceptions from the extension.
template <class Function>
ResultPair Host::serve(std::size_t slot, Function function) noexcept {
    to.metrics.countHostCall(slot);
    try {
        return function();
    } catch (const std::exception& exception) {
        log(LogLevel::error, std::string("a call of the extension failed: ") + exception.what());
        return ErrorValue::operation_failed;
    }
}

void Host::writeLog(Message message) {
    if (isLogged(LogLevel::debug))
        log(LogLevel::debug, std::string(message.name().view()) + " " +
                                 boost::json::serialize(toJson(message.parameters())));
    to.metrics.countLogMessage(message);
    if (trouble.pass(message))
        to.log.add(std::move(message));
}

ResultPair Host::send_message(const Context&, Message& message, bool publish) {
    return serve(1, [&]() -> ResultPair {
        if (!publish) {
            writeLog(message);
            return ErrorValue::success;
        }
        const Stopwatch stopwatch(to.metrics);
        to.metrics.targets.countHostCall(message.parameters(), "message");
        to.events.add(message);
        return ErrorValue::success;
    });
}

ResultPair Host::register_listener_with_settings(const Context&, IZrHmiSrvListener* listener,
                                                 const Value& settings) {
    return serve(9, [&]() -> ResultPair {
        return to.listeners.add(listener, settings) ? ErrorValue::success
                                                    : ErrorValue::operation_failed;
    });
}

ResultPair Host::register_listener(const Context&, IZrHmiSrvListener* listener) {
    return serve(11, [&]() -> ResultPair {
        return to.listeners.add(listener) ? ErrorValue::success : ErrorValue::operation_failed;
    });
}

ResultPair Host::unregister_listener(const Context&, IZrHmiSrvListener* listener) {
    return serve(12, [&]() -> ResultPair {
        return to.listeners.remove(listener) ? ErrorValue::success : ErrorValue::operation_failed;
    });
}

ResultPair Host::apply_alarm(const Context&, AlarmOperation operation, ZrHmiSrv::Alarm alarm) {
    return serve(13, [&]() -> ResultPair {
        const Stopwatch stopwatch(to.metrics);
        auto& counters = to.metrics.targets;
        switch (operation) {
            case AlarmOperation::raise:
                counters.countHostCall(alarm.payload(), "raise");
                to.events.raise(std::move(alarm));
                return ErrorValue::success;
            case AlarmOperation::update:
                counters.countHostCall(alarm.payload(), "update");
                to.events.update(std::move(alarm));
                return ErrorValue::success;
            case AlarmOperation::remove:
                counters.countHostCall(alarm.payload(), "remove");
                to.events.end(std::move(alarm));
                return ErrorValue::success;
        }
        return ErrorValue::operation_failed;
    });
}

ResultPair Host::drop_event(const Context&, ZrHmiSrv::Event event) {
    return serve(14, [&]() -> ResultPair {
        if (const auto content = contentOf(event)) {
            const EventRecord dropped(std::move(*content), 0);
            to.metrics.targets.countForgotten(dropped.target);
            to.events.drop(dropped);
        }
        return ErrorValue::success;
    });
}

ResultPair Host::read_configuration(Value& result, const Context&, const char* path) {
    return serve(16, [&]() -> ResultPair {
        const auto parsed = ConfigurationPath::parse(path ? path : "");
        result = parsed ? to.configuration.read(*parsed) : Value();
        return ErrorValue::success;
    });
}

ResultPair Host::reset_events(const Context&) {
    return serve(17, [&]() -> ResultPair {
        to.requestRefresh();
        return ErrorValue::success;
    });
}

ResultPair Host::announce(const Context&, const char* product) {
    return serve(18, [&]() -> ResultPair {
        log(LogLevel::debug, std::string("extension: ") + (product ? product : ""));
        return ErrorValue::success;
    });
}

}  // namespace hmi
