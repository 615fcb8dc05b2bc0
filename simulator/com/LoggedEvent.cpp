#include "simulator/com/LoggedEvent.h"

namespace ZrSimulator {

using ZrEventLoggerFnxProxyLib::LoggedEventType;

LoggedEvent::LoggedEvent(std::shared_ptr<Border> border, EventRecord record)
    : EventObject(std::move(border), std::move(record)) {}

HRESULT LoggedEvent::get_EventType(LoggedEventType* type) {
    return readContent(Operation::EventType, type, [](const EventContent& content) {
        return content.kind == EventKind::alarm ? LoggedEventType::alarm : LoggedEventType::message;
    });
}

HRESULT LoggedEvent::get_RequiresConfirmation(VARIANT_BOOL* requiresIt) {
    return readContent(
        Operation::RequiresConfirmation, requiresIt,
        [](const EventContent& content) { return toVariantBool(content.requiresConfirmation); });
}

HRESULT LoggedEvent::get_TimeCleared(FILETIME* time) {
    return readRecord(Operation::TimeCleared, time,
                      [](const EventRecord& event) { return toFiletime(event.cleared); });
}

HRESULT LoggedEvent::get_TimeConfirmed(FILETIME* time) {
    return readRecord(Operation::TimeConfirmed, time,
                      [](const EventRecord& event) { return toFiletime(event.confirmed); });
}

HRESULT LoggedEvent::get_IsActive(VARIANT_BOOL* active) {
    return readRecord(Operation::IsActive, active,
                      [](const EventRecord& event) { return toVariantBool(event.live); });
}

HRESULT LoggedEvent::get_InstanceId(ULONG* id) {
    return readRecord(Operation::InstanceId, id,
                      [](const EventRecord& event) { return event.instanceId; });
}

}  // namespace ZrSimulator
