#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

#include "events/AlarmLifecycle.h"
#include "events/EventStatistics.h"
#include "events/EventStore.h"
#include "events/LoggedEventImport.h"
#include "events/NotificationRecorder.h"
#include "host/Listeners.h"
#include "targetsystem/ConnectionState.h"
#include "targetsystem/LoggerConnection.h"
#include "targetsystem/TargetConnection.h"
#include "targetsystem/TargetSystemBase.h"
#include "targetsystem/TextLookup.h"
#include "targetsystem/proxy/IDispEventSimpleImpl.h"

namespace ZrHmiEventLogger {

/// One configured target system, put together: its connection, its events, its texts. It is also
/// the sink of its logger's notifications. Held by shared pointer; created with `make` of
/// TargetSystemPlatformSpecific. What belongs to the target's keeper says so; any thread may call
/// the rest.
class TargetSystem
    : public ZrAtlCom::IDispEventSimpleImpl<0, TargetSystem,
                                            &ZrEventLoggerFnxProxyLib::IID__IZrEventLoggerEvents>,
      public TargetSystemBase,
      public std::enable_shared_from_this<TargetSystem> {
public:
    using Alarm = ZrEventLoggerFnxProxyLib::IZrAlarm;
    using DatabaseChangeReason = ZrEventLoggerFnxProxyLib::tagDatabaseChangeReasonEnum;
    using TimePoint = TargetConnection::TimePoint;

    ~TargetSystem() override = default;
    TargetSystem(const TargetSystem&) = delete;
    TargetSystem& operator=(const TargetSystem&) = delete;

    /// Creates the logger object, sets its time-out and advises the sink. Throws
    /// ZrAtlCom::CAtlException when the logger refuses its time-out, and may be called again then;
    /// what else fails is told, or tried again with every connect. Keeper only, before all below.
    void prepare();
    /// The periodic check: connects and imports again what is not connected. True when the host's
    /// events of this target are stale. Keeper only.
    bool CheckConnection(ImportResultPtr& importResult) { return connection.check(importResult); }
    /// True when the logger is connected and imported; a result only when that was done just now.
    /// Keeper only.
    bool Connect(ImportResultPtr& importResult) { return connection.connect(importResult); }
    /// Unsubscribes, disconnects and lets the alarms leave. Keeper only.
    void Disconnect() { connection.disconnect(); }
    /// Drops the connection only, so that the next check connects and imports again. Takes no
    /// lock; also from inside a notification.
    HRESULT RequestReconnect() { return connection.requestReconnect(); }
    HRESULT ClearLoggedEvents();
    /// Tells the host nothing from now on, and its keeper begins nothing more. Waits for what is
    /// just being told, until the deadline.
    void beginRetiring(TimePoint deadline);
    /// The same, and unsubscribes and disconnects, the latter only before the deadline. Keeper
    /// only, or the last owner.
    void retire(TimePoint deadline);

    /// Reached when the first attempt to connect is over.
    Milestone& firstAttempt() { return connection.firstAttempt(); }
    /// True once after the host's events of this target became stale.
    bool takeStale() { return connection.takeStale(); }
    /// Reports the exception that is being handled.
    void reportFailure() noexcept { reportCurrentException(logging, name()); }

    ConnectionState GetConnectionState() const;
    /// Nothing while no import runs.
    std::optional<ImportProgress::Count> importProgress() const { return importer.progressNow(); }
    EventStatistics statistics() const { return store.statistics(); }

    /// An operator's confirmation.
    ZrHmiSrv::ResultPair confirm(const ZrHmiSrv::Alarm& alarm);
    /// The events of the store, oldest first, as one batch that no change interrupts. False when a
    /// change is under way.
    bool tryProvideEvents(ZrHmiSrv::IEventReceiver& receiver) {
        return store.tryProvideEvents(receiver);
    }
    /// Texts of this target's events. Answers what is to be told when they cannot be had.
    TextLookup& texts() { return textLookup; }

    /// The notifications that the sink listens to.
    static ZrAtlCom::SinkTable sinkTable();

protected:
    /// Calls nothing: a library that hangs is the keeper's affair.
    TargetSystem(TargetSystemSettings settings, ZrHmiSrv::Text domain, LocalAddress& localAddress,
                 ILoggingFunctions& logging, const std::atomic<bool>& stopFlag,
                 std::atomic<std::int32_t>& hostIds);

private:
    // The entry points of the sink, on the proxy library's thread.
    void messageSent(ZrEventLoggerFnxProxyLib::IZrMessage* message);
    void alarmRaised(Alarm* alarm);
    void alarmCleared(Alarm* alarm, VARIANT_BOOL removed);
    void alarmConfirmed(Alarm* alarm, VARIANT_BOOL removed);
    ULONG databaseChanged(DatabaseChangeReason reason);

    void createLogger();
    void refused(HRESULT hr) noexcept override;
    template <class Function>
    void guard(Function function);
    void receive(RecordedCallback&& notification);
    void handle(const RecordedCallback& notification);

    bool prepared = false;  ///< keeper only
    std::atomic<std::uint64_t> misfits = 0;  ///< notifications that do not fit
    LoggerConnection logger;
    NotificationRecorder notifications;
    EventStore store;
    AlarmLifecycle lifecycle;
    LoggedEventImport importer;
    TextLookup textLookup;
    TargetConnection connection;  ///< last, so that it goes first
};

}  // namespace ZrHmiEventLogger
