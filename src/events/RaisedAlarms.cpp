#include "events/RaisedAlarms.h"

#include "events/Conversion.h"
#include "events/DiagnosticMessage.h"
#include "events/StoredAlarm.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmState;
using ZrHmiSrv::Text;
using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

void RaisedAlarms::raise(IZrAlarm& source, bool quiet) {
    static const Text newAlarm = Text::constant("NEW_ALARM_RAISED");
    static const Text again = Text::constant("ACTIVE_ALARM_RAISED_AGAIN");
    const AlarmKey key = alarmKeyOf(context, source);
    const Raised raised{source, key, findUnsettledAlarm(source, key)};
    const auto stored = findStored(raised);
    if (!stored && endedBeforeImport(raised))
        return;
    Alarm alarm = stored.value_or(Alarm());
    toHostAlarm(alarm, source, context, alarm.id(), true);
    if (stored)
        alarm.set_alarm_state(AlarmState::standard);
    dropFormerState(raised, quiet);
    if (stored && identities.contains(key) && Value(alarm) == Value(*stored))
        return;
    // The id that is drawn for an alarm that keeps its own is spent.
    const int drawn = context.drawHostId();
    if (!stored)
        alarm.set_id(drawn);
    announce(stored ? again : newAlarm, raised, alarm, quiet);
}

std::optional<UnsettledAlarm> RaisedAlarms::findUnsettledAlarm(IZrAlarm& source,
                                                               const AlarmKey& key) const {
    if (!identities.anyUnsettled())
        return std::nullopt;
    if (auto known = identities.unsettled(key))
        return known;
    return identities.unsettled(alarmInstanceOf(context, source, key));
}

std::optional<Alarm> RaisedAlarms::findStored(const Raised& raised) const {
    std::optional<Alarm> stored;
    store.read([&](const Container& events) {
        if (const auto* entry = find(events, raised))
            stored = alarmOf(*entry);
    });
    return stored;
}

/// Without numbers, what is not over is another alarm of the same time and place.
bool RaisedAlarms::endedBeforeImport(const Raised& raised) const {
    return identities.contains(raised.key) &&
           (raised.key.number ||
            toTimestamp(context.read(raised.source, &IZrAlarm::get_TimeCleared)).isset());
}

RaisedAlarms::Container::Entry* RaisedAlarms::find(const Container& events, const Raised& raised) {
    if (auto* entry = events.findByPointer(&raised.source))
        return entry;
    return findUnsettled(events, raised.unsettled);
}

/// The import took the alarm over twice: from the log, and live when it had been raised again.
void RaisedAlarms::dropFormerState(const Raised& raised, bool quiet) {
    if (!raised.unsettled)
        return;
    Container::Removed former;
    Lock lock(store.publishMutex);
    context.proceed();
    store.change([&](Container& events) {
        auto* const entry = findUnsettled(events, raised.unsettled);
        if (entry && events.findByPointer(&raised.source))
            former = events.erase(*entry);
    });
    if (!former.payload.isset())
        return;
    identities.replace(raised.unsettled->key);
    if (!quiet)
        store.forget({former.payload});
}

void RaisedAlarms::announce(const Text& name, const Raised& raised, const Alarm& alarm,
                            bool quiet) {
    Container::Removed former;
    auto pointer = std::make_shared<ScopedEventPointer<IZrAlarm>>(&raised.source);
    Lock lock(store.publishMutex);
    context.proceed();
    store.forget(replace(raised, alarm, std::move(pointer), former));
    if (raised.unsettled)
        identities.settle(raised.unsettled->key);
    context.logging.logMessage(
        diagnosticMessage(name, {context.targetName, alarm.id(), alarm.time_raised()}));
    if (!quiet)
        context.logging.raiseAlarm(alarm);
}

EventStore::Evicted RaisedAlarms::replace(const Raised& raised, const Alarm& alarm,
                                          EventStore::AlarmPointer pointer,
                                          Container::Removed& former) {
    // Of the time that was converted, should it have been raised again since its key was read.
    AlarmKey key = raised.key;
    key.timeRaised = alarm.time_raised();
    return store.change([&](Container& events) {
        if (auto* entry = find(events, raised))
            former = events.erase(*entry);
        events.insert(alarm, {std::move(pointer), key}, context.eventLimit);
    });
}

bool RaisedAlarms::isCurrent(IZrAlarm& source) const {
    const AlarmKey key = alarmKeyOf(context, source);
    const auto stored = findStored({source, key, std::nullopt});
    return stored && stored->time_raised() == key.timeRaised;
}

void RaisedAlarms::refresh(IZrAlarm& source, bool isRaise) {
    const AlarmKey key = alarmKeyOf(context, source);
    // Only a raise tells that an alarm was raised again.
    const Raised raised{source, key, isRaise ? findUnsettledAlarm(source, key) : std::nullopt};
    const auto stored = findStored(raised);
    if (!stored)
        return isRaise ? raise(source, true) : void();
    Alarm alarm = *stored;
    toHostAlarm(alarm, source, context, alarm.id(), true);
    if (!isRaise && !alarm.time_cleared().isset())
        alarm.set_time_cleared(stored->time_cleared());
    dropFormerState(raised, true);

    Container::Removed former;
    auto pointer = store.pin(alarm.id());
    Lock lock(store.publishMutex);
    context.proceed();
    if (alarm.time_raised() != stored->time_raised()) {
        AlarmKey refreshed = key;
        refreshed.timeRaised = alarm.time_raised();
        identities.addAlarm(refreshed);
        return store.forget(replace(raised, alarm, std::move(pointer), former));
    }
    store.change([&](Container& events) {
        if (auto* entry = find(events, raised))
            former.payload = events.replace(*entry, alarm);
    });
}

}  // namespace ZrHmiEventLogger
