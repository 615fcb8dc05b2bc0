#pragma once

#include <atomic>
#include <chrono>

#include "events/EventStore.h"
#include "events/LoggedEventImport.h"
#include "targetsystem/LocalAddress.h"
#include "targetsystem/LoggerConnection.h"
#include "targetsystem/Milestone.h"
#include "targetsystem/TargetSystemSettings.h"
#include "targetsystem/TextLookup.h"
#include "targetsystem/proxy/EventCookie.h"

namespace ZrHmiEventLogger {

/// What a connection serves and is served by; all of it outlives the connection.
struct ConnectionPartners {
    const EventContext& context;
    LocalAddress& localAddress;
    LoggerConnection& logger;
    EventStore& store;
    LoggedEventImport& importer;
    TextLookup& texts;
    std::atomic<bool>& disabled;
};

/// The life of one target's connection: connected, imported, checked, lost, ended. Each attempt
/// runs on the target's keeper, one at a time; what may come from any thread says so.
class TargetConnection {
public:
    using DatabaseChangeReason = ZrEventLoggerFnxProxyLib::tagDatabaseChangeReasonEnum;
    using TimePoint = std::chrono::steady_clock::time_point;

    TargetConnection(const TargetSystemSettings& settings, ConnectionPartners partners)
        : settings(settings), with(partners) {}

    /// True when the host's events of this target are stale.
    bool check(ImportResultPtr& importResult);
    /// True when the logger is connected and imported; a result only when that was done just now.
    bool connect(ImportResultPtr& importResult);
    /// Unsubscribes, disconnects and lets the alarms leave.
    void disconnect();
    /// Unsubscribes and disconnects for good. Done once, also when several threads ask. Past the
    /// deadline it makes no call that waits for the logger, whose release ends the connection too.
    void end(TimePoint deadline);

    /// Advises the sink, the target system.
    HRESULT subscribe(IUnknown* sink);

    /// Drops the connection only, so that the next check connects and imports again. Any thread,
    /// also from inside a notification: takes no lock.
    HRESULT requestReconnect();
    /// A notification that does not fit was lost, which another import makes up for: a reconnect is
    /// requested, unless the last import did that already. A library that always passes something
    /// else would never stay connected. Any thread.
    void makeUpForMisfit();
    /// The logger's database is another one: what was imported is stale. Any thread.
    void databaseChanged(DatabaseChangeReason reason);
    /// Reached when the first attempt to connect is over, whatever came of it. Any thread.
    Milestone& firstAttempt() { return attempted; }
    /// True once after the host's events of this target became stale. Any thread.
    bool takeStale() { return hostIsStale.exchange(false); }

private:
    enum class Answer { connected, notConnected, failed };

    Answer probe();
    bool connect(bool up, bool wasImported, ImportResultPtr& importResult);
    bool establish(bool up);
    void connectLogger();
    std::string netId();
    bool import(ImportResultPtr& importResult);
    void importFailed(HRESULT hr);
    void logImport(const ImportResult& result);
    void connectFailed(HRESULT hr);
    void settle(bool up, bool keepsError);
    void removeAlarms();
    void disconnectLogger();
    void unsubscribe();
    void reportFailure();

    const TargetSystemSettings& settings;
    const ConnectionPartners with;
    IUnknown* sink = nullptr;
    Milestone attempted;
    /// The store shows what the logger held when it was last connected, and nothing since has
    /// asked for another import.
    std::atomic<bool> imported = false;
    /// The host still shows what has left the store, or does not show yet what has entered it.
    std::atomic<bool> hostIsStale = false;
    std::atomic<bool> ended = false;
    std::atomic<bool> mayMakeUp = false;  ///< for a misfit, by one more import
    std::atomic<bool> makingUp = false;   ///< that import is owed
    bool failedToImport = false;  ///< in the running attempt; keeper only
    ZrAtlCom::EventCookie eventCookie;  ///< last, so that it goes first
};

}  // namespace ZrHmiEventLogger
