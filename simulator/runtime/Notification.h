#pragma once

#include <optional>

#include "simulator/com/Alarm.h"
#include "simulator/com/Message.h"

namespace ZrSimulator {

/// One call of the outgoing interface, with a reference to the event that it is about.
class Notification {
public:
    static Notification messageSent(const Ref<Message>& message);
    static Notification alarmRaised(const Ref<Alarm>& alarm);
    static Notification alarmCleared(const Ref<Alarm>& alarm, bool removed);
    static Notification alarmConfirmed(const Ref<Alarm>& alarm, bool removed);
    static Notification databaseChanged(LONG reason);

    void deliverTo(IDispatch& sink) const;
    /// The same with null in the event's place.
    Notification withoutEvent() const;

private:
    explicit Notification(DISPID id) : id(id) {}
    Notification(DISPID id, const Ref<Alarm>& alarm);
    Notification(DISPID id, const Ref<Alarm>& alarm, bool removed);

    DISPID id;
    Ref<RefCounted> event;
    std::optional<IDispatch*> eventInterface;  ///< of `event`
    std::optional<bool> removed;
    LONG reason = 0;
};

}  // namespace ZrSimulator
