#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "platform/Mutex.h"
#include "targetsystem/ConnectionState.h"
#include "targetsystem/proxy/ComPtr.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// The connection of one target's logger, and what is known of it. The state can be read at any
/// time: its mutex is never held across a call, so a target that hangs keeps no reader waiting.
/// Functions that call the logger throw whatever the call threw.
class LoggerConnection {
public:
    using Logger = ZrEventLoggerFnxProxyLib::IZrEventLogger4;

    /// Creates the logger object. On failure the connection stays without one for ever.
    HRESULT create();
    void setTimeout(ULONG milliseconds);

    /// Null when it could not be created. What needs no lock is called on it directly: ending a
    /// connection while another thread may be waiting in it, and queries.
    Logger* get() const { return logger.get(); }

    /// Whether the logger says that it is connected, unless `disabled` is set. A yes goes into a
    /// state that is known already.
    bool isUp(const std::atomic<bool>& disabled) EXCLUDES(connectionMutex);
    /// The same at the end of a periodic check, which always leaves a known state, also when the
    /// logger fails to answer. `wasDown`: the check began with a target known as not connected,
    /// whose connect error then stays.
    void settle(const std::atomic<bool>& disabled, bool wasDown) EXCLUDES(connectionMutex);

    /// False when `abandoned` was set meanwhile; the logger is disconnected then.
    bool connect(const std::string& netId, bool preloadTranslations,
                 const std::atomic<bool>& abandoned) EXCLUDES(connectionMutex);
    void disconnect() EXCLUDES(connectionMutex);

    std::optional<ConnectionState> state() const EXCLUDES(stateMutex);
    void setState(ConnectionState state) EXCLUDES(stateMutex);

private:
    void settleState(bool up, bool wasDown) EXCLUDES(stateMutex);
    bool reportsConnected() const REQUIRES(connectionMutex);
    void connectLogger(const std::string& netId, bool preloadTranslations)
        REQUIRES(connectionMutex);

    /// Held across connect, IsConnected and disconnect of the logger; the host is never called
    /// under it.
    RecursiveMutex connectionMutex;
    mutable Mutex stateMutex;
    std::optional<ConnectionState> connectionState GUARDED_BY(stateMutex);
    ZrAtlCom::ComPtr<Logger> logger;  ///< constant after creation
};

}  // namespace ZrHmiEventLogger
