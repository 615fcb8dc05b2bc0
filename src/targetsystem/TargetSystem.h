#pragma once

#include <memory>

#include "events/AlarmLifecycle.h"
#include "events/EventStatistics.h"
#include "events/EventStore.h"
#include "events/LoggedEventImport.h"
#include "events/NotificationRecorder.h"
#include "host/Listeners.h"
#include "targetsystem/ConnectionState.h"
#include "targetsystem/LoggerConnection.h"
#include "targetsystem/TargetSystemBase.h"
#include "targetsystem/TextLookup.h"
#include "targetsystem/proxy/EventCookie.h"
#include "targetsystem/proxy/IDispEventSimpleImpl.h"

namespace ZrHmiEventLogger {

/// One configured target system: keeps its logger connected, receives its notifications and
/// holds the events that stand in the host. Held by shared pointer; created with `make` of
/// TargetSystemPlatformSpecific. Any thread may call any public function. Nothing but
/// RequestReconnect and retire may be called from inside a notification.
class TargetSystem
    : public ZrAtlCom::IDispEventSimpleImpl<0, TargetSystem,
                                            &ZrEventLoggerFnxProxyLib::IID__IZrEventLoggerEvents>,
      public TargetSystemBase,
      public std::enable_shared_from_this<TargetSystem> {
public:
    using Alarm = ZrEventLoggerFnxProxyLib::IZrAlarm;
    using DatabaseChangeReason = ZrEventLoggerFnxProxyLib::tagDatabaseChangeReasonEnum;

    ~TargetSystem() override = default;
    TargetSystem(const TargetSystem&) = delete;
    TargetSystem& operator=(const TargetSystem&) = delete;

    /// The periodic check: connects and imports again what is not connected. True when the host's
    /// events of this target are stale.
    bool CheckConnection(ImportResultPtr& importResult);
    /// True when the logger is connected and imported; a result only when that was done just now.
    bool Connect(ImportResultPtr& importResult);
    /// Unsubscribes, disconnects and lets the alarms leave.
    void Disconnect();
    /// Drops the connection only, so that the next check connects and imports again. Takes no lock.
    HRESULT RequestReconnect();
    HRESULT ClearLoggedEvents();
    /// For good: no connection, no notification, no import from now on.
    void retire();

    ConnectionState GetConnectionState() const;
    EventStatistics statistics() const { return store.statistics(); }

    /// An operator's confirmation.
    ZrHmiSrv::ResultPair confirm(const ZrHmiSrv::Alarm& alarm);
    /// The events of the store, oldest first, as one batch that no notification interrupts.
    void provideEvents(ZrHmiSrv::IEventReceiver& receiver);
    /// Texts of this target's events. Answers what is to be told when they cannot be had.
    TextLookup& texts() { return textLookup; }

    /// Advises the sink, which needs a complete object. Called once the object is shared.
    void subscribe();

    /// The notifications that the sink listens to.
    static ZrAtlCom::SinkTable sinkTable();

protected:
    /// Throws ZrAtlCom::CAtlException when the logger refuses its time-out.
    TargetSystem(TargetSystemSettings settings, ZrHmiSrv::Text domain, ILoggingFunctions& logging,
                 const std::atomic<bool>& stopFlag, std::atomic<std::int32_t>& hostIds);

private:
    // The entry points of the sink, on the proxy library's thread.
    void messageSent(ZrEventLoggerFnxProxyLib::IZrMessage* message);
    void alarmRaised(Alarm* alarm);
    void alarmCleared(Alarm* alarm, VARIANT_BOOL removed);
    void alarmConfirmed(Alarm* alarm, VARIANT_BOOL removed);
    ULONG databaseChanged(DatabaseChangeReason reason);

    void receive(RecordedCallback&& notification);
    void handle(const RecordedCallback& notification, bool quiet);
    void OnDatabaseChanged(DatabaseChangeReason reason);

    bool establish() REQUIRES(importMutex);
    bool import(ImportResultPtr& importResult) REQUIRES(importMutex);
    void abandonConnection();
    void disconnectLogger();
    void logImport(const ImportResult& result);
    void ConnectFailed(HRESULT hr);
    bool probe();
    void settle(bool wasDown);
    void removeAlarms();
    void unsubscribe();
    void reportFailure();

    /// One attempt to connect and import at a time: of two threads, the second finds it done.
    /// Taken before all other locks of a target.
    Mutex importMutex;
    /// The store shows what the logger held when it was last connected, and nothing since has
    /// asked for another import.
    std::atomic<bool> imported = false;
    LoggerConnection connection;
    NotificationRecorder notifications;
    EventStore store;
    AlarmLifecycle lifecycle;
    LoggedEventImport importer;
    TextLookup textLookup;
    /// The host still shows alarms that have left the store.
    std::atomic<bool> hostIsStale = false;
    ZrAtlCom::EventCookie eventCookie;  ///< last, so that it goes first
};

}  // namespace ZrHmiEventLogger
