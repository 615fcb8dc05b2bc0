#include "simulator/com/Alarm.h"

#include "simulator/runtime/ProtocolError.h"
#include "simulator/runtime/Runtime.h"

namespace ZrSimulator {

namespace {

enum ConfirmationState : ULONG { notRequired = 1, pending = 2, confirmed = 3 };

ULONG confirmationState(const EventRecord& record) {
    if (!record.content->requiresConfirmation)
        return notRequired;
    return record.confirmed != 0 ? confirmed : pending;
}

}  // namespace

Alarm::Alarm(std::shared_ptr<Border> border, std::weak_ptr<Runtime> runtime, std::string name,
             EventRecord record)
    : EventObject(std::move(border), std::move(record)),
      runtime(std::move(runtime)),
      alarmName(std::move(name)) {}

HRESULT Alarm::get_ArgumentCount(ULONG* count) {
    return readArgumentCount(count);
}

HRESULT Alarm::get_Argument(ULONG index, VARIANT* argument) {
    return readArgument(index, argument);
}

HRESULT Alarm::get_TimeCleared(FILETIME* time) {
    return readRecord(Operation::TimeCleared, time,
                      [](const EventRecord& event) { return toFiletime(event.cleared); });
}

HRESULT Alarm::get_ConfirmationState(ULONG* state) {
    return readRecord(Operation::ConfirmationState, state, confirmationState);
}

HRESULT Alarm::Confirm() {
    return catchToResult([&]() -> HRESULT {
        if (const auto answer = border->enter(Operation::Confirm))
            return *answer;
        const auto owner = runtime.lock();
        return owner ? owner->confirm(*this) : portNotOpen;
    });
}

HRESULT Alarm::get_TimeConfirmed(FILETIME* time) {
    return readRecord(Operation::TimeConfirmed, time,
                      [](const EventRecord& event) { return toFiletime(event.confirmed); });
}

HRESULT Alarm::get_InstanceId(ULONG* id) {
    return readRecord(Operation::InstanceId, id,
                      [](const EventRecord& event) { return event.instanceId; });
}

}  // namespace ZrSimulator
