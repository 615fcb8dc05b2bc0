#include "simulator/com/LoggedEvent.h"

namespace ZrSimulator {

using ZrEventLoggerFnxProxyLib::LoggedEventType;

LoggedEvent::LoggedEvent(std::shared_ptr<Border> border, EventRecord record)
    : EventObject(std::move(border)), entry(std::move(record)) {}

HRESULT LoggedEvent::get_EventType(LoggedEventType* type) {
    return read(Operation::EventType, type, [&] {
        return entry.content->kind == EventKind::alarm ? LoggedEventType::alarm
                                                       : LoggedEventType::message;
    });
}

HRESULT LoggedEvent::get_RequiresConfirmation(VARIANT_BOOL* requiresIt) {
    return read(Operation::RequiresConfirmation, requiresIt,
                [&] { return toVariantBool(entry.content->requiresConfirmation); });
}

HRESULT LoggedEvent::get_TimeCleared(FILETIME* time) {
    return read(Operation::TimeCleared, time, [&] { return toFiletime(entry.cleared); });
}

HRESULT LoggedEvent::get_TimeConfirmed(FILETIME* time) {
    return read(Operation::TimeConfirmed, time, [&] { return toFiletime(entry.confirmed); });
}

HRESULT LoggedEvent::get_IsActive(VARIANT_BOOL* active) {
    return read(Operation::IsActive, active, [&] { return toVariantBool(entry.live); });
}

HRESULT LoggedEvent::get_InstanceId(ULONG* id) {
    return read(Operation::InstanceId, id, [&] { return entry.instanceId; });
}

}  // namespace ZrSimulator
