/// The extension as the host's alarm provider.
#include <chrono>
#include <thread>

#include "events/EventParameters.h"
#include "extension/ZrHmiEventLogger.h"

using ZrHmiSrv::Alarm;
using ZrHmiSrv::Context;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::IEventReceiver;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

namespace {

/// A change and the word of it take less.
constexpr std::chrono::milliseconds pauseForTheBusy(1);

}  // namespace

ResultPair ZrHmiEventLogger::confirm_alarm(const Context&, const Alarm& alarm) {
    return guarded(ErrorValue::request_failed, "An exception was raised.", [&]() -> ResultPair {
        const Value* name = alarm.payload().lookup(keys().targetName.view());
        const auto target = name ? targetSystems.find(name->get_text().view()) : nullptr;
        if (!target && stopping)
            return {ErrorValue::not_connected, "Not connected."};
        if (!target)
            return {ErrorValue::unknown_target_system, "TARGET_NOT_FOUND"};
        return target->confirm(alarm);
    });
}

/// Those that are just telling the host something come last, when they have told it. The host may
/// ask from inside a slot, and from inside those of two targets at once, which then would wait for
/// each other: the wait has an end. What it leaves out is owed, as is a hand-over that fails.
ResultPair ZrHmiEventLogger::provide_events(const Context&, IEventReceiver& receiver) {
    const ResultPair provided = guarded(ErrorValue::operation_failed, "", [&]() -> ResultPair {
        ErrorValue result = ErrorValue::success;
        auto waiting = targetSystems.copy();
        const Deadline deadline = longestDeadline(waiting);
        const auto provide = [&](const Kept& kept) {
            try {
                return kept.target->tryProvideEvents(receiver);
            } catch (...) {
                kept.target->reportFailure();
                result = ErrorValue::operation_failed;
                return true;
            }
        };
        while (std::erase_if(waiting, provide), !waiting.empty()) {
            if (std::chrono::steady_clock::now() >= deadline)
                return ErrorValue::operation_failed;
            std::this_thread::sleep_for(pauseForTheBusy);
        }
        // A target that is leaving has handed over nothing: that is not to be taken for all quiet.
        return stopping ? ErrorValue::operation_failed : result;
    });
    if (!provided.succeeded())
        reset.owe();
    return provided;
}

}  // namespace ZrHmiEventLogger
