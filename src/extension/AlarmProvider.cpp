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
        const Value* name = alarm.payload().lookup(keys::targetName.view());
        const auto target = name ? findTargetSystem(name->get_text().view()) : nullptr;
        if (!target)
            return {ErrorValue::unknown_target_system, "TARGET_NOT_FOUND"};
        return target->confirm(alarm);
    } catch (...) {
        reportCurrentException(*this, productName);
        return {ErrorValue::request_failed, "An exception was raised."};
    }
}

ResultPair ZrHmiEventLogger::provide_events(const Context&, IEventReceiver& receiver) {
    try {
        ErrorValue result = ErrorValue::success;
        for (const TargetSystemPointer& target : copyTargetSystems()) {
            try {
                target->provideEvents(receiver);
            } catch (...) {
                reportCurrentException(*this, target->name());
                result = ErrorValue::operation_failed;
            }
        }
        return result;
    } catch (...) {
        reportCurrentException(*this, productName);
        return ErrorValue::operation_failed;
    }
}

}  // namespace ZrHmiEventLogger
