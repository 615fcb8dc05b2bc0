#pragma once

#include <memory>

#include "server/metrics/Metrics.h"
#include "server/Options.h"
#include "server/WorkerLanes.h"
#include "server/api/CommandsResource.h"
#include "server/api/ConfigResource.h"
#include "server/api/EventsResource.h"
#include "server/api/LogResource.h"
#include "server/api/MetricsResource.h"
#include "server/api/SimulatorResource.h"
#include "server/config/ConfigurationStore.h"
#include "server/events/EventBook.h"
#include "server/events/LogBook.h"
#include "server/extension/EventRefresher.h"
#include "server/extension/ExtensionCalls.h"
#include "server/extension/ExtensionLibrary.h"
#include "server/extension/Host.h"
#include "server/extension/ListenerRegistry.h"
#include "server/extension/SimulatorControl.h"
#include "server/net/HttpServer.h"
#include "server/net/IoThread.h"
#include "server/net/StreamHub.h"

namespace hmi {

/// The server, put together. What the extension calls stands before the extension, and outlives it.
class Application {
public:
    /// Throws StartError.
    explicit Application(const Options& options);
    /// Serves until the process is told to stop. Throws StartError when the extension refuses.
    void run();

private:
    void addRoutes();
    void startExtension();
    void stopExtension();

    const Options options;
    IoThread io;
    Metrics metrics;
    ConfigurationStore configuration;
    StreamHub hub{io.context(), metrics};
    EventBook events{hub};
    LogBook log{hub};
    ListenerRegistry listeners;
    const ZrHmiSrv::Context context;
    ExtensionCalls calls{listeners, context};
    EventRefresher refresher{events, calls, metrics};
    Host host;

    Router router;
    WorkerLanes lanes;
    Dispatcher dispatcher;
    EventsResource eventsResource{events, calls, metrics};
    ConfigResource configResource{configuration, calls};
    CommandsResource commandsResource{calls};
    LogResource logResource{log};
    MetricsResource metricsResource{metrics, events, calls};
    std::unique_ptr<SimulatorResource> simulatorResource;
    HttpServer server;

    std::unique_ptr<SimulatorControl> simulator;
    std::unique_ptr<ExtensionLibrary> extension;
};

}  // namespace hmi
