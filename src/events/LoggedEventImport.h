#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "events/AlarmLifecycle.h"
#include "events/EventContext.h"
#include "events/EventStore.h"
#include "events/ImportProgress.h"
#include "events/ImportResult.h"
#include "events/ImportSnapshot.h"
#include "events/NotificationRecorder.h"

namespace ZrHmiEventLogger {

/// Rebuilds the store of one target from what its logger holds: logged events, active alarms, and
/// then the notifications that arrived while they were fetched.
class LoggedEventImport {
public:
    using Logger = ZrEventLoggerFnxProxyLib::IZrEventLogger4;

    LoggedEventImport(const EventContext& context, EventStore& store,
                      NotificationRecorder& notifications, AlarmLifecycle& lifecycle)
        : context(context), store(store), notifications(notifications), lifecycle(lifecycle) {}

    /// Throws what the proxy threw, Abandoned when the target is over, or std::runtime_error when
    /// more notifications arrived than are recorded. The store is then what it was, or the rebuilt
    /// one when only the replay failed; the notifications that were recorded are gone. One import at a time, called with no lock held that a notification takes.
    ImportResultPtr run(Logger& logger) EXCLUDES(notifications.sinkMutex);
    /// Whether the last run, failed or not, left another store behind than it found.
    bool exchangedStore() const { return storeExchanged; }
    /// Of the run that is under way. Any thread.
    std::optional<ImportProgress::Count> progressNow() const { return progress.read(); }

private:
    using IZrAlarm = ZrEventLoggerFnxProxyLib::IZrAlarm;
    struct Replay;

    void beginRecording() EXCLUDES(notifications.sinkMutex);
    void swapAndReplay(ImportSnapshot& snapshot, ImportResult& result)
        EXCLUDES(notifications.sinkMutex);
    void exchangeStores(ImportSnapshot& snapshot);
    static void lookAhead(const NotificationRecorder::Records& records, Replay& state);
    void replay(const RecordedCallback& record, Replay& state);
    NotificationRecorder::Records abandon() EXCLUDES(notifications.sinkMutex);

    const EventContext& context;
    EventStore& store;
    NotificationRecorder& notifications;
    AlarmLifecycle& lifecycle;
    ImportProgress progress;
    std::uint64_t completedImports = 0;
    bool storeExchanged = false;
};

}  // namespace ZrHmiEventLogger
