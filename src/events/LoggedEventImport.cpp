#include "events/LoggedEventImport.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>

namespace ZrHmiEventLogger {

namespace {

/// How long identities hold at most, whatever the time-out: the clock would overflow.
constexpr std::chrono::nanoseconds longestDelay = std::chrono::hours(24);

}  // namespace

struct LoggedEventImport::Replay {
    const ImportSnapshot& snapshot;
    std::unordered_set<const IZrAlarm*> raised;  ///< in this replay
    std::unordered_map<const IZrAlarm*, std::size_t> raisesAhead;
    /// The record with which an object began to stand for the alarm that it stands for now.
    std::unordered_map<const IZrAlarm*, const RecordedCallback*> begins;
};

/// An object tells only of its last alarm: what was recorded of those before it, which ended,
/// cannot be replayed.
void LoggedEventImport::lookAhead(const NotificationRecorder::Records& records, Replay& state) {
    std::unordered_set<const IZrAlarm*> removed;
    for (const auto& record : records) {
        const IZrAlarm* const alarm = record.alarm.get();
        if (record.kind == NotificationKind::alarmRaised) {
            ++state.raisesAhead[alarm];
            if (removed.erase(alarm) != 0)
                state.begins[alarm] = &record;
        } else if (alarm && record.flag == VARIANT_TRUE) {
            removed.insert(alarm);
        }
    }
}

ImportResultPtr LoggedEventImport::run(Logger& logger) {
    // Both outlive sinkMutex: they hold what is to be released without it.
    const auto snapshot =
        std::make_shared<ImportSnapshot>(context, store, lifecycle.rejected(), progress);
    NotificationRecorder::Records discarded;

    const auto start = std::chrono::steady_clock::now();
    const std::uint64_t rejectedBefore = lifecycle.rejected().count();
    auto result = std::make_shared<ImportResult>();
    result->released = snapshot;
    storeExchanged = false;
    beginRecording();
    try {
        snapshot->fetch(logger);
        swapAndReplay(*snapshot, *result);
        progress.end();
    } catch (...) {
        progress.end();
        discarded = abandon();
        throw;
    }
    result->number = ++completedImports;
    result->loggedEvents = snapshot->loggedCount();
    result->activeAlarms = snapshot->activeCount();
    result->keptIds = snapshot->keptIdCount();
    result->rejected = lifecycle.rejected().count() - rejectedBefore;
    result->duration = std::chrono::steady_clock::now() - start;
    return result;
}

void LoggedEventImport::beginRecording() {
    ImportedIdentities former;  // released without the lock
    Lock lock(notifications.sinkMutex);
    former = std::exchange(lifecycle.imported(), {});
    notifications.startRecording();
}

void LoggedEventImport::swapAndReplay(ImportSnapshot& snapshot, ImportResult& result) {
    NotificationRecorder::Records records;
    Lock lock(notifications.sinkMutex);
    if (!notifications.isComplete())
        throw std::runtime_error("More than " + std::to_string(notifications.capacity) +
                                 " notifications arrived during the import, which is done again.");
    result.overruns = notifications.overrunCount();
    lifecycle.imported() = snapshot.takeIdentities();
    exchangeStores(snapshot);
    records = notifications.takeRecords();
    result.recorded = records.size();
    Replay state{snapshot, {}, {}, {}};
    lookAhead(records, state);
    for (auto& record : records) {
        if (record.kind == NotificationKind::databaseChanged) {
            result.databaseChange = record.reason;
            break;
        }
        replay(record, state);
        record.alarm = {};
        record.message = {};
    }
    const std::chrono::nanoseconds timeout(context.timeout.nanoseconds());
    lifecycle.imported().endAt(ImportedIdentities::Clock::now() + std::min(timeout, longestDelay));
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
    IZrAlarm* const alarm = record.alarm.get();
    if (record.kind == NotificationKind::alarmRaised)
        --state.raisesAhead[alarm];
    if (alarm && state.snapshot.tookOver(alarm))
        return lifecycle.refresh(record, state.raisesAhead[alarm] > 0);
    // It would be rejected, told and counted once more with each record.
    if (alarm && state.snapshot.leftOut(*alarm))
        return;
    if (const auto begin = state.begins.find(alarm); begin != state.begins.end()) {
        if (begin->second != &record)
            return;
        state.begins.erase(begin);
    }
    // A change of an alarm that nobody has seen begins with the alarm itself.
    if (alarm && state.raised.insert(alarm).second && record.kind != NotificationKind::alarmRaised)
        lifecycle.onAlarmRaised(*alarm, quiet);
    lifecycle.handle(record, quiet);
}

NotificationRecorder::Records LoggedEventImport::abandon() {
    Lock lock(notifications.sinkMutex);
    lifecycle.imported() = {};
    notifications.stopRecording();
    return notifications.takeRecords();
}

}  // namespace ZrHmiEventLogger
