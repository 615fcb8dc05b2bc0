#include "events/LoggedEventImport.h"

#include "events/Conversion.h"

using ZrHmiSrv::Event;

namespace ZrHmiEventLogger {

struct LoggedEventImport::Replay {
    const ImportSnapshot& snapshot;
    std::unordered_set<const IZrAlarm*> raised;  ///< in this replay
    std::unordered_set<AlarmKey> met;
    std::unordered_set<AlarmInstance> metInstances;
};

ImportResultPtr LoggedEventImport::run(Logger& logger) {
    // Both outlive sinkMutex: they hold what is to be released without it.
    const auto snapshot = std::make_shared<ImportSnapshot>(context, store);
    NotificationRecorder::Records discarded;

    const auto start = std::chrono::steady_clock::now();
    auto result = std::make_shared<ImportResult>();
    result->released = snapshot;
    storeExchanged = false;
    beginRecording();
    try {
        snapshot->fetch(logger);
        swapAndReplay(*snapshot, *result);
    } catch (...) {
        discarded = abandon();
        throw;
    }
    result->number = ++completedImports;
    result->loggedEvents = snapshot->loggedCount();
    result->activeAlarms = snapshot->activeCount();
    result->keptIds = snapshot->keptIdCount();
    result->duration = std::chrono::steady_clock::now() - start;
    return result;
}

void LoggedEventImport::beginRecording() {
    Lock lock(notifications.sinkMutex);
    lifecycle.imported() = {};
    notifications.startRecording();
}

void LoggedEventImport::swapAndReplay(ImportSnapshot& snapshot, ImportResult& result) {
    NotificationRecorder::Records records;
    Lock lock(notifications.sinkMutex);
    lifecycle.imported() = snapshot.takeIdentities();
    exchangeStores(snapshot);
    records = notifications.takeRecords();
    result.recorded = records.size();
    Replay state{snapshot, {}, {}, {}};
    for (auto& record : records) {
        if (record->kind == NotificationKind::databaseChanged) {
            result.databaseChange = record->reason;
            break;
        }
        replay(*record, state);
        record.reset();
    }
    if (!result.databaseChange)
        importUnlisted(state);
    lifecycle.imported().endAt(ImportedIdentities::Clock::now() +
                               std::chrono::nanoseconds(context.timeout.nanoseconds()));
    notifications.stopRecording();
}

void LoggedEventImport::exchangeStores(ImportSnapshot& snapshot) {
    Lock lock(store.publishMutex);
    context.proceed();
    snapshot.keepUntilTheEnd(store.exchange(snapshot.takeStore()));
    storeExchanged = true;
    store.forget(snapshot.evictions());
}

void LoggedEventImport::replay(const RecordedCallback& record, Replay& state) {
    constexpr bool quiet = true;
    if (record.kind == NotificationKind::messageSent)
        lifecycle.onMessageSent(*record.message, quiet);
    else
        replayAlarm(record, state);
}

void LoggedEventImport::replayAlarm(const RecordedCallback& record, Replay& state) {
    constexpr bool quiet = true;
    const AlarmKey key = alarmKeyOf(context, *record.alarm);
    const bool known = lifecycle.imported().holdsAlarm(key);
    lifecycle.imported().takeAlarm(key, record.kind);
    if (state.snapshot.tookOver(record.alarm.get()))
        return lifecycle.refresh(record);
    if (known)
        return;
    state.met.insert(key);
    if (const auto instance = alarmInstanceOf(context, *record.alarm, key))
        state.metInstances.insert(*instance);
    // A change of an alarm that nobody has seen begins with the alarm itself.
    if (state.raised.insert(record.alarm.get()).second &&
        record.kind != NotificationKind::alarmRaised)
        lifecycle.onAlarmRaised(*record.alarm, quiet);
    lifecycle.handle(record, quiet);
}

/// Alarms that ended between the log's answer and the active list's, and of whose end no
/// notification told so far.
void LoggedEventImport::importUnlisted(const Replay& state) {
    for (const ImportSnapshot::Skipped& skipped : state.snapshot.unlisted()) {
        const auto instance = alarmInstanceOf(context, *skipped.item, skipped.key);
        if (state.met.contains(skipped.key) || (instance && state.metInstances.contains(*instance)))
            continue;
        Event event;
        const int hostId = context.drawHostId();
        toHostEvent(event, *skipped.item, context, hostId);
        lifecycle.imported().addUnsettled({skipped.key, hostId}, instance);
        Lock lock(store.publishMutex);
        context.proceed();
        store.forget(store.change([&](EventStore::Container& events) {
            events.insert(std::move(event), {}, context.eventLimit);
        }));
    }
}

NotificationRecorder::Records LoggedEventImport::abandon() {
    Lock lock(notifications.sinkMutex);
    notifications.stopRecording();
    return notifications.takeRecords();
}

}  // namespace ZrHmiEventLogger
