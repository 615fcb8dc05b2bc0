#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "server/Backend.h"
#include "server/api/AboutResource.h"
#include "server/api/CommandsResource.h"
#include "server/api/ConfigCheckResource.h"
#include "server/api/ConfigResource.h"
#include "server/api/ConfirmationsResource.h"
#include "server/api/EventsResource.h"
#include "server/api/HistoryResource.h"
#include "server/api/LogResource.h"
#include "server/api/MetricsResource.h"
#include "server/api/StatisticsResource.h"
#include "server/api/TargetsResource.h"
#include "server/events/ChangeFeed.h"
#include "server/users/SessionResource.h"

/// A server without a network and with no extension loaded, which holds a few events. What it
/// answers is looked at: a body that says that it is JSON must be.
class FuzzedServer {
public:
    FuzzedServer();
    ~FuzzedServer();
    FuzzedServer(const FuzzedServer&) = delete;
    FuzzedServer& operator=(const FuzzedServer&) = delete;

    /// As somebody whom the users' file knows, where the request says so; and as on a server
    /// without users.
    void serve(hmi::Request request, const std::string& target);

private:
    struct Files {
        Files();
        ~Files();
        std::filesystem::path directory, configuration, users;
    };

    bool serveAs(hmi::AccessControl& access, hmi::Request request, const std::string& target);
    void handle(const hmi::Request& request);
    void answer(const hmi::Request& request, hmi::Response response);
    void fill();

    const Files files;
    hmi::ChangeFeed feed;
    hmi::Metrics metrics;
    hmi::WorkerLanes lanes;
    hmi::EventTextService texts;
    hmi::TargetBook targets;
    hmi::RaiseBook raises;
    hmi::Backend backend;
    hmi::ConfirmationService confirmations;
    hmi::Router router;
    hmi::Audit audit;
    hmi::AccessControl open{hmi::OriginPolicy({"hmi.example"}), {}, audit};
    hmi::AccessControl guarded{hmi::OriginPolicy({"hmi.example"}), files.users, audit};
    hmi::SessionResource session{guarded};
    hmi::AboutResource about;
    hmi::EventsResource events{backend.events, targets, backend.calls, texts};
    hmi::ConfirmationsResource confirmation{confirmations, backend.events, lanes, audit};
    hmi::TargetsResource targetsResource{targets};
    hmi::StatisticsResource statistics{raises, backend.events, targets, texts};
    hmi::ConfigResource config{backend.configuration, backend.calls};
    hmi::ConfigCheckResource check{backend.configuration, backend.events};
    hmi::CommandsResource commands{backend.calls};
    hmi::LogResource log{backend.log};
    hmi::HistoryResource history;
    hmi::MetricsResource metricsResource;
    std::string cookie;  ///< of a session of the engineer
};
