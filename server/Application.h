#pragma once

#include <future>
#include <memory>
#include <optional>

#include "server/Backend.h"
#include "server/Options.h"
#include "server/ReloadSignal.h"
#include "server/StopSignal.h"
#include "server/api/AboutResource.h"
#include "server/api/CommandsResource.h"
#include "server/api/ConfigCheckResource.h"
#include "server/api/ConfigResource.h"
#include "server/api/ConfirmationsResource.h"
#include "server/api/EventsResource.h"
#include "server/api/HistoryResource.h"
#include "server/api/LogResource.h"
#include "server/api/MetricsResource.h"
#include "server/api/SimulatorResource.h"
#include "server/api/StatisticsResource.h"
#include "server/api/TargetsResource.h"
#include "server/events/ChangeFeed.h"
#include "server/extension/SimulatorControl.h"
#include "server/history/History.h"
#include "server/lanes/WorkerLanes.h"
#include "server/metrics/Metrics.h"
#include "server/net/HttpServer.h"
#include "server/net/IoThread.h"
#include "server/net/StreamHub.h"
#include "server/targets/TargetWatch.h"
#include "server/texts/EventTextService.h"
#include "server/users/SessionResource.h"

namespace hmi {

/// The server, put together.
class Application {
public:
    /// Throws StartError.
    explicit Application(const Options& options);
    ~Application();
    /// Serves until the process is told to stop. Throws StartError when the extension refuses.
    void run();

private:
    std::unique_ptr<IHistory> makeHistory();
    void addRoutes();
    /// Returns when the process is to stop.
    void serve(StopSignal& signal);
    /// `started`: the start of the extension, when it is still under way.
    void stop(std::future<void>& started);

    const Options options;
    IoThread io;
    Metrics metrics;
    StreamHub hub{io.context(), metrics};
    ChangeFeed feed;
    WorkerLanes lanes;
    EventTextService texts;
    TargetBook targets;
    RaiseBook raises;
    std::unique_ptr<IHistory> history;  ///< null: none is kept
    std::unique_ptr<SimulatorControl>
        simulator;  ///< outlives the extension, which uses its library
    Backend backend;
    ConfirmationService confirmations;
    TargetWatch targetWatch;

    Router router;
    Audit audit;
    AccessControl access;
    Dispatcher dispatcher;
    SessionResource sessionResource{access};
    AboutResource aboutResource;
    EventsResource eventsResource{backend.events, targets, backend.calls, texts};
    ConfirmationsResource confirmationsResource{confirmations, backend.events, lanes, audit};
    TargetsResource targetsResource{targets};
    StatisticsResource statisticsResource{raises, backend.events, targets, texts};
    ConfigResource configResource{backend.configuration, backend.calls};
    ConfigCheckResource configCheckResource{backend.configuration, backend.events};
    CommandsResource commandsResource{backend.calls};
    LogResource logResource{backend.log};
    HistoryResource historyResource{history.get(), access};
    MetricsResource metricsResource{metrics, backend.events, backend.calls,
                                    feed,    lanes,          texts,
                                    history.get()};
    std::unique_ptr<SimulatorResource> simulatorResource;
    HttpServer server;
    std::optional<ReloadSignal> reload;
};

}  // namespace hmi
