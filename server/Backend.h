#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "server/config/ConfigurationStore.h"
#include "server/events/EventBook.h"
#include "server/events/LogBook.h"
#include "server/extension/EventRefresher.h"
#include "server/extension/ExtensionCalls.h"
#include "server/extension/ExtensionLibrary.h"
#include "server/extension/Host.h"
#include "server/extension/ListenerRegistry.h"
#include "server/metrics/Metrics.h"

namespace hmi {

/// The server behind its network: configuration, events, log, and the extension that fills them.
/// What the extension calls stands before it, and outlives it.
class Backend {
public:
    /// Changes go to the sink. Throws StartError when the configuration cannot be used.
    Backend(const std::filesystem::path& configurationFile, ZrHmiSrv::Context context,
            IChangeSink& sink, Metrics& metrics, EventRefresher::IsImported isImported);
    ~Backend() { stop(); }

    /// Throws StartError when the extension cannot be loaded or refuses.
    void start(const std::filesystem::path& extensionFile);
    /// Tells the extension to stop, also while `start` runs on another thread. Returns when it has
    /// answered. Calls of it answer nothing from then on.
    void shutDownExtension();
    /// Returns when the extension has gone.
    void stop();

    /// Of the target systems, by name, as the configuration tells them.
    std::map<std::string, std::string> addresses() const;
    /// How long a target system may take to answer.
    std::chrono::milliseconds timeout() const;

private:
    const ZrHmiSrv::Context context;
    ListenerRegistry listeners;

public:
    ConfigurationStore configuration;
    EventBook events;
    LogBook log;
    ExtensionCalls calls{listeners, context};

private:
    EventRefresher refresher;
    Host host;
    std::unique_ptr<ExtensionLibrary> extension;
    std::atomic<bool> isShutDown = false;
};

}  // namespace hmi
