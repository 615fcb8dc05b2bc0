#include "simulator/runtime/Notification.h"

#include <array>

namespace ZrSimulator {

using ZrEventLoggerFnxProxyLib::IZrAlarm;
using ZrEventLoggerFnxProxyLib::IZrMessage;

namespace {

enum DispatchId : DISPID {
    onMessageSent = 2,
    onAlarmRaised = 3,
    onAlarmCleared = 4,
    onAlarmConfirmed = 5,
    onDatabaseChanged = 10,
};

VARIANT variantOf(IDispatch* object) {
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = VT_DISPATCH;
    variant.pdispVal = object;
    return variant;
}

VARIANT variantOf(bool value) {
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = VT_BOOL;
    variant.boolVal = toVariantBool(value);
    return variant;
}

VARIANT variantOf(LONG value) {
    VARIANT variant;
    VariantInit(&variant);
    variant.vt = VT_I4;
    variant.lVal = value;
    return variant;
}

}  // namespace

Notification::Notification(DISPID id, const Ref<Alarm>& alarm)
    : id(id), event(alarm), eventInterface(static_cast<IZrAlarm*>(alarm.get())) {}

Notification::Notification(DISPID id, const Ref<Alarm>& alarm, bool removed)
    : Notification(id, alarm) {
    this->removed = removed;
}

Notification Notification::messageSent(const Ref<Message>& message) {
    Notification notification(onMessageSent);
    notification.event = message;
    notification.eventInterface = static_cast<IZrMessage*>(message.get());
    return notification;
}

Notification Notification::alarmRaised(const Ref<Alarm>& alarm) {
    return Notification(onAlarmRaised, alarm);
}

Notification Notification::alarmCleared(const Ref<Alarm>& alarm, bool removed) {
    return Notification(onAlarmCleared, alarm, removed);
}

Notification Notification::alarmConfirmed(const Ref<Alarm>& alarm, bool removed) {
    return Notification(onAlarmConfirmed, alarm, removed);
}

Notification Notification::databaseChanged(LONG reason) {
    Notification notification(onDatabaseChanged);
    notification.reason = reason;
    return notification;
}

Notification Notification::withoutEvent() const {
    Notification lacking = *this;
    if (lacking.eventInterface)
        lacking.eventInterface = nullptr;
    return lacking;
}

void Notification::deliverTo(IDispatch& sink) const {
    std::array<VARIANT, 2> reversed;  // the last argument comes first
    UINT count = 0;
    if (removed)
        reversed[count++] = variantOf(*removed);
    reversed[count++] = eventInterface ? variantOf(*eventInterface) : variantOf(reason);
    DISPPARAMS parameters{reversed.data(), nullptr, count, 0};
    sink.Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &parameters, nullptr, nullptr, nullptr);
}

}  // namespace ZrSimulator
