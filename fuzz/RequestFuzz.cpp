/// Bytes of a connection: parsed, checked, admitted and handled as the server does it, but without
/// a network and with no extension loaded.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include "server/Backend.h"
#include "server/Log.h"
#include "server/api/AboutResource.h"
#include "server/api/CommandsResource.h"
#include "server/api/ConfigResource.h"
#include "server/api/LogResource.h"
#include "server/api/PageResource.h"
#include "server/events/ChangeFeed.h"
#include "server/http/Conditional.h"
#include "server/http/Router.h"
#include "server/net/RequestHead.h"
#include "server/users/AccessControl.h"

namespace fs = std::filesystem;
namespace http = boost::beast::http;

namespace {

/// A server of which nothing runs.
class Server {
public:
    Server() {
        std::ofstream(file) << R"({"TIMEOUT": "PT5S", "LIMIT_EVENT_COUNT": 10, "TARGET_SYSTEMS":
                                   {"A": {"ADDRESS": "local", "ENABLED": true}}})";
        backend = std::make_unique<hmi::Backend>(file, ZrHmiSrv::Context("Fuzz"), feed, metrics,
                                                 [](const auto&) { return true; });
        commands.emplace(backend->calls);
        config.emplace(backend->configuration, backend->calls);
        log.emplace(backend->log);
        about.addRoutes(router);
        commands->addRoutes(router);
        config->addRoutes(router);
        log->addRoutes(router);
        hmi::PageResource::addRoutes(router);
    }
    ~Server() {
        std::error_code ignored;
        fs::remove(file, ignored);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    void serve(hmi::Request request, const std::string& target) {
        access.admit(std::move(request), target,
                     [this](const hmi::Request& admitted, const auto& refusal) {
                         if (!refusal)
                             handle(admitted);
                     });
    }

private:
    void handle(const hmi::Request& request) {
        try {
            const hmi::Route& route = router.find(request);
            if (route.placement)
                route.placement(request);
            hmi::Response response = route.handler(request);
            hmi::fit(request, response);
        } catch (const hmi::RequestError& error) {
            if (error.status < 400 || error.status > 599)
                std::abort();
        }
    }

    const fs::path file =
        fs::temp_directory_path() / ("fuzz-" + std::to_string(std::random_device()()) + ".json");
    hmi::ChangeFeed feed;
    hmi::Metrics metrics;
    std::unique_ptr<hmi::Backend> backend;
    hmi::Router router;
    hmi::AboutResource about;
    std::optional<hmi::CommandsResource> commands;
    std::optional<hmi::ConfigResource> config;
    std::optional<hmi::LogResource> log;
    hmi::Audit audit;
    hmi::AccessControl access{hmi::OriginPolicy({"hmi.example"}), {}, audit};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static std::unique_ptr<Server> server;
    if (!server) {
        hmi::configureLog(hmi::LogLevel::off, hmi::LogFormat::text);
        server = std::make_unique<Server>();
    }
    http::request_parser<http::string_body> parser;
    parser.eager(true);
    parser.header_limit(16 << 10);
    parser.body_limit(1 << 20);
    boost::beast::error_code error;
    std::size_t used = 0;
    while (used < size && !error && !parser.is_done()) {
        const std::size_t taken = parser.put(boost::asio::buffer(data + used, size - used), error);
        if (taken == 0)
            break;
        used += taken;
    }
    if (error || !parser.is_done() || hmi::faultOf(parser.get()))
        return 0;
    const std::string target(parser.get().target());
    hmi::Request request = hmi::requestOf(parser.get());
    request.body = std::move(parser.get().body());
    const bool changes = request.method == hmi::Method::put ||
                         request.method == hmi::Method::remove;
    server->serve(std::move(request), target);
    if (changes)
        server.reset();  // each input has the same start
    return 0;
}
