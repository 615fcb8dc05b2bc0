#pragma once

#include <memory>

#include "server/Backend.h"
#include "server/Options.h"
#include "server/WorkerLanes.h"
#include "server/api/AboutResource.h"
#include "server/api/CommandsResource.h"
#include "server/api/ConfigResource.h"
#include "server/api/EventsResource.h"
#include "server/api/LogResource.h"
#include "server/api/MetricsResource.h"
#include "server/api/SimulatorResource.h"
#include "server/extension/SimulatorControl.h"
#include "server/metrics/Metrics.h"
#include "server/net/HttpServer.h"
#include "server/net/IoThread.h"
#include "server/net/StreamHub.h"

namespace hmi {

/// The server, put together.
class Application {
public:
    /// Throws StartError.
    explicit Application(const Options& options);
    /// Serves until the process is told to stop. Throws StartError when the extension refuses.
    void run();

private:
    void addRoutes();
    const Options options;
    IoThread io;
    Metrics metrics;
    StreamHub hub{io.context(), metrics};
    std::unique_ptr<SimulatorControl>
        simulator;  ///< outlives the extension, which uses its library
    Backend backend;

    Router router;
    WorkerLanes lanes;
    Dispatcher dispatcher;
    AboutResource aboutResource;
    EventsResource eventsResource{backend.events, backend.calls, metrics};
    ConfigResource configResource{backend.configuration, backend.calls};
    CommandsResource commandsResource{backend.calls};
    LogResource logResource{backend.log};
    MetricsResource metricsResource{metrics, backend.events, backend.calls};
    std::unique_ptr<SimulatorResource> simulatorResource;
    HttpServer server;
};

}  // namespace hmi
