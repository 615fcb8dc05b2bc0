/// The extension as the host's alarm provider.
#include "events/EventParameters.h"
#include "extension/ZrHmiEventLogger.h"

using ZrHmiSrv::Alarm;
using ZrHmiSrv::Context;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::IEventReceiver;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

ResultPair ZrHmiEventLogger::confirm_alarm(const Context&, const Alarm& alarm) {
    try {
        const Value* name = alarm.payload().lookup(keys().targetName.view());
        const auto target = name ? targetSystems.find(name->get_text().view()) : nullptr;
        if (!target && stopping)
            return {ErrorValue::not_connected, "Not connected."};
        if (!target)
            return {ErrorValue::unknown_target_system, "TARGET_NOT_FOUND"};
        return target->confirm(alarm);
    } catch (...) {
        reportCurrentException(*this, productName());
        return {ErrorValue::request_failed, "An exception was raised."};
    }
}

/// Those that are just telling the host something come last.
ResultPair ZrHmiEventLogger::provide_events(const Context&, IEventReceiver& receiver) {
    try {
        ErrorValue result = ErrorValue::success;
        std::vector<TargetSystems::Pointer> busy;
        const auto provide = [&](const TargetSystems::Pointer& target, bool wait) {
            try {
                if (wait)
                    target->provideEvents(receiver);
                else if (!target->tryProvideEvents(receiver))
                    busy.push_back(target);
            } catch (...) {
                reportCurrentException(*this, target->name());
                result = ErrorValue::operation_failed;
            }
        };
        for (const Kept& kept : targetSystems.copy())
            provide(kept.target, false);
        for (const auto& target : std::vector(std::move(busy)))
            provide(target, true);
        // A target that is leaving has handed over nothing: that is not to be taken for all quiet.
        return stopping ? ErrorValue::operation_failed : result;
    } catch (...) {
        reportCurrentException(*this, productName());
        return ErrorValue::operation_failed;
    }
}

}  // namespace ZrHmiEventLogger
