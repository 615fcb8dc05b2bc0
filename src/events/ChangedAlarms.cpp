#include "events/ChangedAlarms.h"

#include <optional>

#include "events/Conversion.h"
#include "events/DiagnosticMessage.h"
#include "events/StoredAlarm.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::AlarmState;
using ZrHmiSrv::Text;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

/// What the notification says, read from the proxy before anything is changed.
struct ChangedAlarms::Change {
    const IZrAlarm* source;
    bool isClear;  ///< otherwise a confirmation
    bool removed;
    AlarmKey key;
    AlarmConfirmationState confirmationState;
    Timestamp cleared;  ///< as the logger has it
    Timestamp confirmed;

    Timestamp loggerTime() const { return isClear ? cleared : confirmed; }
    /// As far as the logger says, the alarm has not ended since it was raised last.
    bool mayBeLate(const Alarm& alarm) const {
        return cleared < key.timeRaised && alarm.time_raised() == key.timeRaised;
    }

    void applyTo(Alarm& alarm) const {
        alarm.set_confirmation_state(confirmationState);
        if (!isClear)
            alarm.set_time_confirmed(confirmed);
        // What has ended was cleared, whatever the logger says of it.
        if (isClear || (removed && !alarm.time_cleared().isset())) {
            alarm.set_time_cleared(orNow(cleared));
            alarm.set_alarm_state(AlarmState::standard);
        }
    }
};

ChangedAlarms::Change ChangedAlarms::read(const RecordedCallback& notification) const {
    IZrAlarm& alarm = *notification.alarm;
    const bool isClear = notification.kind == NotificationKind::alarmCleared;
    return {&alarm,
            isClear,
            notification.flag == VARIANT_TRUE,
            alarmKeyOf(context, alarm),
            mapConfirmationState(context.read(alarm, &IZrAlarm::get_ConfirmationState)),
            toTimestamp(context.read(alarm, &IZrAlarm::get_TimeCleared)),
            isClear ? Timestamp() : toTimestamp(context.read(alarm, &IZrAlarm::get_TimeConfirmed))};
}

void ChangedAlarms::change(const RecordedCallback& notification, Audience audience) {
    const Change change = read(notification);
    std::optional<Alarm> alarm;
    Value former;
    Container::Released released{};
    Lock lock(store.publishMutex);
    context.proceed();
    const auto evicted = store.change([&](Container& events) {
        auto* const entry = find(events, change);
        if (!entry)
            return;
        alarm = alarmOf(*entry);
        change.applyTo(*alarm);
        former = events.replace(*entry, *alarm);
        if (change.removed && entry->isLive())
            released = events.release(*entry, context.eventLimit);
    });
    if (change.removed)
        identities.settle(change.key);
    if (released.pointer && change.mayBeLate(*alarm))
        identities.unsettle({change.key, alarm->id()});
    else if (released.pointer)
        identities.forget(change.key);
    if (!alarm)
        return tellUnknown(change, audience);
    if (!released.evicted)
        store.forget(evicted);
    tell(change, *alarm, audience);
    if (released.evicted)
        store.forget(evicted);
}

ChangedAlarms::Container::Entry* ChangedAlarms::find(const Container& events,
                                                     const Change& change) const {
    if (auto* entry = events.findByPointer(change.source))
        return entry;
    // Without a number, another live alarm of the same time and place would have the same key.
    if (change.key.number)
        if (auto* entry = events.find(change.key))
            return entry;
    return findUnsettled(events, identities.unsettled(change.key));
}

void ChangedAlarms::tell(const Change& change, const Alarm& alarm, Audience audience) {
    static const Text cleared = Text::constant("KNOWN_ALARM_CLEARED");
    static const Text confirmed = Text::constant("KNOWN_ALARM_CONFIRMED");
    if (audience == Audience::nobody)
        return;
    context.logging.logMessage(
        diagnosticMessage(change.isClear ? cleared : confirmed,
                          {context.targetName, change.removed, alarm.id(), alarm.time_raised(),
                           change.isClear ? alarm.time_cleared() : alarm.time_confirmed()}));
    if (audience == Audience::logAndHost)
        context.logging.updateAlarm(alarm, change.removed);
}

/// What an import took over is known, although nothing of it has to be changed any more.
void ChangedAlarms::tellUnknown(const Change& change, Audience audience) {
    static const Text cleared = Text::constant("UNKNOWN_ALARM_CLEARED");
    static const Text confirmed = Text::constant("UNKNOWN_ALARM_CONFIRMED");
    if (audience == Audience::nobody || identities.contains(change.key))
        return;
    context.logging.logMessage(diagnosticMessage(
        change.isClear ? cleared : confirmed,
        {context.targetName, change.removed, change.key.timeRaised, change.loggerTime()}));
}

}  // namespace ZrHmiEventLogger
