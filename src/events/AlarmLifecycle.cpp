#include "events/AlarmLifecycle.h"

#include <optional>

#include "events/Conversion.h"
#include "events/DiagnosticMessage.h"
#include "events/ProxyValue.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::AlarmState;
using ZrHmiSrv::Event;
using ZrHmiSrv::Message;
using ZrHmiSrv::Text;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

namespace {

Alarm alarmOf(const Event& event) {
    return event.payload().get_alarm();
}

/// A clear without a time of its own happened now.
Timestamp orNow(Timestamp time) {
    return time.isset() ? time : Timestamp::now();
}

Timestamp timeCleared(const EventContext& context, IZrAlarm& alarm) {
    return toTimestamp(context.read(alarm, &IZrAlarm::get_TimeCleared));
}

/// The key under which an alarm is found again: of the time that was converted, should the alarm
/// have been raised again since its key was read.
AlarmKey storeKeyOf(const Alarm& alarm, const AlarmKey& key) {
    return {alarm.time_raised(), key.number};
}

EventStore::AlarmPointer pointerTo(IZrAlarm& alarm) {
    return std::make_shared<ScopedEventPointer<IZrAlarm>>(&alarm);
}

EventStore::Container::Entry* findUnsettled(const EventStore::Container& events,
                                            const UnsettledAlarm& alarm) {
    return events.findInGroup(alarm.key.timeRaised.nanoseconds(), [&](const auto& entry) {
        return alarmOf(entry.event()).id() == alarm.hostId;
    });
}

}  // namespace

/// What clearing and confirming have in common, read from the proxy before anything is changed.
struct AlarmLifecycle::Change {
    NotificationKind kind;
    Text known;
    Text unknown;
    AlarmKey key;
    AlarmConfirmationState confirmationState;
    Timestamp loggerTime;  ///< of the clear or the confirmation, as the logger has it
    Timestamp storedTime;  ///< the same as the store takes it over
    void (*setTime)(Alarm& alarm, Timestamp time);
};

struct AlarmLifecycle::Raised {
    IZrAlarm& source;
    AlarmKey key;
    std::optional<UnsettledAlarm> unsettled;  ///< an import has taken it over without its end
};

void AlarmLifecycle::handle(const RecordedCallback& notification, bool quiet) {
    identities.dropEnded();
    switch (notification.kind) {
        case NotificationKind::messageSent:
            return onMessageSent(*notification.message, quiet);
        case NotificationKind::alarmRaised:
            return onAlarmRaised(*notification.alarm, quiet);
        case NotificationKind::alarmCleared:
            return onAlarmCleared(*notification.alarm, notification.flag, quiet);
        case NotificationKind::alarmConfirmed:
            return onAlarmConfirmed(*notification.alarm, notification.flag, quiet);
        case NotificationKind::databaseChanged:
            return;
    }
}

void AlarmLifecycle::onMessageSent(IZrMessage& source, bool quiet) {
    Message message;
    toHostMessage(message, source, context);
    if (identities.takeMessage(message))
        return;
    bool kept = false;
    Lock lock(store.publishMutex);
    context.proceed();
    const auto evicted = store.change([&](Container& events) {
        kept = events.insert(eventOf(message), {}, context.eventLimit) != nullptr;
    });
    // The host hears of a message before it hears that the message is forgotten.
    if (kept)
        store.forget(evicted);
    if (!quiet)
        context.logging.sendMessage(message);
    if (!kept)
        store.forget(evicted);
}

std::optional<Alarm> AlarmLifecycle::findStored(const Raised& raised) {
    std::optional<Alarm> stored;
    store.read([&](const Container& events) {
        if (const auto* entry = findRaised(events, raised))
            stored = alarmOf(entry->event());
    });
    return stored;
}

AlarmLifecycle::Container::Entry* AlarmLifecycle::findRaised(const Container& events,
                                                             const Raised& raised) {
    if (auto* entry = events.findByPointer(&raised.source))
        return entry;
    return raised.unsettled ? findUnsettled(events, *raised.unsettled) : nullptr;
}

void AlarmLifecycle::convert(Alarm& alarm, IZrAlarm& source, bool keepId) {
    toHostAlarm(alarm, source, context, context.drawHostId(), keepId);
}

void AlarmLifecycle::onAlarmRaised(IZrAlarm& source, bool quiet) {
    Raised raised{source, alarmKeyOf(context, source), {}};
    const bool late = identities.takeAlarm(raised.key, NotificationKind::alarmRaised);
    if (!late && identities.anyUnsettled())
        if (const auto instance = alarmInstanceOf(context, source, raised.key))
            raised.unsettled = identities.unsettled(*instance);
    const auto stored = findStored(raised);
    if (stored && !(late && isCurrent(*stored, source)))
        raiseAgain(raised, *stored, quiet);
    else if (!stored && !late)
        raise(raised, quiet);
}

/// Whether the alarm stands in the store just as the logger has it.
bool AlarmLifecycle::isCurrent(const Alarm& stored, IZrAlarm& source) const {
    Alarm current = stored;
    toHostAlarm(current, source, context, 0, true);
    return Value(current) == Value(stored);
}

void AlarmLifecycle::raise(const Raised& raised, bool quiet) {
    static const Text name("NEW_ALARM_RAISED");
    Alarm alarm;
    convert(alarm, raised.source, false);
    announce(name, raised, alarm, quiet);
}

void AlarmLifecycle::raiseAgain(const Raised& raised, const Alarm& stored, bool quiet) {
    static const Text name("ACTIVE_ALARM_RAISED_AGAIN");
    Alarm alarm = stored;
    // The id that is drawn here is spent: the alarm keeps the one under which the host knows it.
    convert(alarm, raised.source, true);
    alarm.set_alarm_state(AlarmState::standard);
    announce(name, raised, alarm, quiet);
}

void AlarmLifecycle::announce(const Text& name, const Raised& raised, const Alarm& alarm,
                              bool quiet) {
    Container::Removed former;
    auto pointer = pointerTo(raised.source);
    Lock lock(store.publishMutex);
    context.proceed();
    store.forget(store.change([&](Container& events) {
        if (auto* entry = findRaised(events, raised))
            former = events.erase(*entry);
        events.insert(eventOf(alarm), {std::move(pointer), storeKeyOf(alarm, raised.key)},
                      context.eventLimit);
    }));
    context.logging.logMessage(
        diagnosticMessage(name, {context.targetName, alarm.id(), alarm.time_raised()}));
    if (!quiet)
        context.logging.raiseAlarm(alarm);
}

void AlarmLifecycle::refresh(const RecordedCallback& notification) {
    IZrAlarm& source = *notification.alarm;
    const AlarmKey key = alarmKeyOf(context, source);
    const auto stored = findStored({source, key, {}});
    if (!stored)
        return;
    Alarm alarm = *stored;
    toHostAlarm(alarm, source, context, 0, true);
    if (notification.kind == NotificationKind::alarmCleared)
        alarm.set_time_cleared(orNow(timeCleared(context, source)));
    else if (notification.kind == NotificationKind::alarmConfirmed && !alarm.time_cleared().isset())
        alarm.set_time_cleared(stored->time_cleared());

    Container::Removed former;
    Container::Released released{};
    Lock lock(store.publishMutex);
    context.proceed();
    store.forget(store.change([&](Container& events) {
        auto* entry = events.findByPointer(&source);
        if (!entry)
            return;
        if (entry->key() == alarm.time_raised().nanoseconds()) {
            former.event = events.replaceEvent(*entry, eventOf(alarm));
        } else {
            former = events.erase(*entry);
            entry = events.insert(eventOf(alarm), {former.pointer, storeKeyOf(alarm, key)},
                                  context.eventLimit);
        }
        if (notification.flag == VARIANT_TRUE)
            released = events.release(*entry, context.eventLimit);
    }));
}

void AlarmLifecycle::onAlarmCleared(IZrAlarm& alarm, VARIANT_BOOL removed, bool quiet) {
    static const Text known("KNOWN_ALARM_CLEARED");
    static const Text unknown("UNKNOWN_ALARM_CLEARED");
    const Timestamp cleared = timeCleared(context, alarm);
    const Change change{NotificationKind::alarmCleared,
                        known,
                        unknown,
                        alarmKeyOf(context, alarm),
                        mapConfirmationState(context.read(alarm, &IZrAlarm::get_ConfirmationState)),
                        cleared,
                        orNow(cleared),
                        [](Alarm& stored, Timestamp time) {
                            stored.set_time_cleared(time);
                            stored.set_alarm_state(AlarmState::standard);
                        }};
    onAlarmChanged(change, removed == VARIANT_TRUE, quiet);
}

void AlarmLifecycle::onAlarmConfirmed(IZrAlarm& alarm, VARIANT_BOOL removed, bool quiet) {
    static const Text known("KNOWN_ALARM_CONFIRMED");
    static const Text unknown("UNKNOWN_ALARM_CONFIRMED");
    const Timestamp confirmed = toTimestamp(context.read(alarm, &IZrAlarm::get_TimeConfirmed));
    const Change change{NotificationKind::alarmConfirmed,
                        known,
                        unknown,
                        alarmKeyOf(context, alarm),
                        mapConfirmationState(context.read(alarm, &IZrAlarm::get_ConfirmationState)),
                        confirmed,
                        confirmed,
                        [](Alarm& stored, Timestamp time) { stored.set_time_confirmed(time); }};
    onAlarmChanged(change, removed == VARIANT_TRUE, quiet);
}

void AlarmLifecycle::onAlarmChanged(const Change& change, bool removed, bool quiet) {
    std::optional<Alarm> alarm;
    Event former;
    Container::Released released{};
    Lock lock(store.publishMutex);
    context.proceed();
    const auto evicted = store.change([&](Container& events) {
        auto* entry = findKnown(events, change.key);
        if (!entry)
            return;
        alarm = alarmOf(entry->event());
        alarm->set_confirmation_state(change.confirmationState);
        change.setTime(*alarm, change.storedTime);
        Event event = entry->event();
        event.set_payload(*alarm);
        former = events.replaceEvent(*entry, std::move(event));
        if (removed && entry->isLive())
            released = events.release(*entry, context.eventLimit);
    });
    const bool late = identities.takeAlarm(change.key, change.kind);
    if (removed)
        identities.settle(change.key);
    if (!alarm) {
        if (!late)
            context.logging.logMessage(diagnosticMessage(
                change.unknown,
                {context.targetName, removed, change.key.timeRaised, change.loggerTime}));
        return;
    }
    if (!released.evicted)
        store.forget(evicted);
    context.logging.logMessage(diagnosticMessage(
        change.known,
        {context.targetName, removed, alarm->id(), alarm->time_raised(), change.storedTime}));
    if (!quiet)
        context.logging.updateAlarm(*alarm, removed);
    if (released.evicted)
        store.forget(evicted);
}

AlarmLifecycle::Container::Entry* AlarmLifecycle::findKnown(const Container& events,
                                                            const AlarmKey& key) const {
    if (auto* entry = events.find(key))
        return entry;
    const auto unsettled = identities.unsettled(key);
    return unsettled ? findUnsettled(events, *unsettled) : nullptr;
}

}  // namespace ZrHmiEventLogger
