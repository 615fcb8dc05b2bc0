#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "events/EventContext.h"
#include "platform/Mutex.h"
#include "targetsystem/ConnectionState.h"
#include "targetsystem/proxy/ComPtr.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// One target's logger object, and what is known of its connection. The state can be read at any
/// time: its mutex is never held across a call, so a target that hangs keeps no reader waiting.
/// Functions that call the logger throw whatever the call threw.
class LoggerConnection {
public:
    using Logger = ZrEventLoggerFnxProxyLib::IZrEventLogger4;

    /// Creates the logger object. On failure the connection stays without one for ever.
    HRESULT create();
    void setTimeout(ULONG milliseconds);

    /// Null until it is created, and when it cannot be. What needs no lock is called on it
    /// directly: ending a connection while another thread may be waiting in it, and queries.
    Logger* get() const { return usable; }

    /// Asks the logger.
    bool isConnected() EXCLUDES(connectionMutex);
    /// The same without waiting for a connect or a check that is under way, during which the
    /// published state counts, as it does when it says no.
    bool isConnectedNow() EXCLUDES(connectionMutex);

    /// Does not fall back to the older way for a target that is over.
    void connect(const std::string& netId, bool preloadTranslations, const EventContext& context)
        EXCLUDES(connectionMutex);
    void disconnect() EXCLUDES(connectionMutex);
    /// Whether the logger was asked at its last connect to load its texts ahead.
    bool preloadsTranslations() const { return preloading; }

    /// None until the first connect or check.
    std::optional<ConnectionState> state() const EXCLUDES(stateMutex);
    void setState(ConnectionState state) EXCLUDES(stateMutex);

private:
    HRESULT askLogger(bool& connected) const REQUIRES(connectionMutex);

    /// Held across connect, IsConnected and disconnect of the logger, and across nothing else.
    Mutex connectionMutex;
    mutable Mutex stateMutex;  ///< guards the state; nothing is called under it
    std::optional<ConnectionState> connectionState GUARDED_BY(stateMutex);
    std::atomic<bool> preloading = false;
    ZrAtlCom::ComPtr<Logger> logger;  ///< constant after creation
    std::atomic<Logger*> usable = nullptr;  ///< the same, once it is created
};

}  // namespace ZrHmiEventLogger
