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
    : EventObject(std::move(border)),
      runtime(std::move(runtime)),
      alarmName(std::move(name)),
      current(std::move(record)) {}

EventRecord Alarm::record() const {
    Lock lock(mutex);
    return current;
}

void Alarm::update(const EventRecord& record) {
    Lock lock(mutex);
    current = record;
}

HRESULT Alarm::get_ArgumentCount(ULONG* count) {
    return readArgumentCount(count);
}

HRESULT Alarm::get_Argument(ULONG index, VARIANT* argument) {
    return readArgument(index, argument);
}

HRESULT Alarm::get_TimeCleared(FILETIME* time) {
    return read(Operation::TimeCleared, time, [&] { return toFiletime(record().cleared); });
}

HRESULT Alarm::get_ConfirmationState(ULONG* state) {
    return read(Operation::ConfirmationState, state, [&] { return confirmationState(record()); });
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
    return read(Operation::TimeConfirmed, time, [&] { return toFiletime(record().confirmed); });
}

HRESULT Alarm::get_InstanceId(ULONG* id) {
    return read(Operation::InstanceId, id, [&] { return record().instanceId; });
}

}  // namespace ZrSimulator
