#include "bench/endtoend/ServerInProcess.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <random>
#include <stdexcept>
#include <thread>

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <boost/dll/runtime_symbol_info.hpp>
#include <boost/dll/shared_library.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include "server/Application.h"
#include "server/HeapSettings.h"
#include "simulator/Control.h"

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace json = boost::json;
using asio::ip::tcp;

namespace {

constexpr const char* netId = "5.10.20.30.1.1";
constexpr const char* eventClass = "{00000001-0000-0000-0000-00000000ABCD}";

constexpr const char* plant = R"({
    "localNetId": "5.10.20.1.1.1",
    "runtimes": {"5.10.20.30.1.1": {
        "eventClasses": {"{00000001-0000-0000-0000-00000000ABCD}": {
            "name": {"1033": "Filling machine"},
            "events": {
                "1": {"kind": "alarm", "severity": 3, "confirm": true,
                      "text": {"1033": "Product tank level below {0} %"}},
                "2": {"kind": "message", "text": {"1033": "Batch {0} begun"}}}}}}}})";

tcp::endpoint loopback(std::uint16_t port) {
    return {asio::ip::address_v4::loopback(), port};
}

std::uint16_t freePort() {
    asio::io_context io;
    return tcp::acceptor(io, loopback(0)).local_endpoint().port();
}

void expect(bool condition, const std::string& what) {
    if (!condition)
        throw std::runtime_error(what);
}

std::string action(json::object members, std::size_t count) {
    members["class"] = eventClass;
    members["arguments"] = {15, 4711};
    members["source"] = {{"id", 17},
                         {"name", "Main.Filler.Tank"},
                         {"guid", "{00000001-0002-0003-0405-060708090A0B}"}};
    members["json"] = R"({"batch": 4711})";
    if (count > 1)
        members["count"] = count;
    return json::serialize(members);
}

}  // namespace

std::string raiseAction(std::size_t count, std::string_view name) {
    return action({{"do", "raise"}, {"alarm", name}, {"event", 1}}, count);
}

std::string messageAction(std::size_t count) {
    return action({{"do", "message"}, {"event", 2}}, count);
}

/// The configuration and the plant, until the server is over.
class ServerInProcess::Files {
public:
    explicit Files(unsigned eventLimit) {
        std::filesystem::create_directory(directory);
        std::ofstream(config())
            << R"({"TIMEOUT": "PT5S", "LIMIT_EVENT_COUNT": )" << eventLimit
            << R"(, "TARGET_SYSTEMS": {"Filler": {"ADDRESS": ")" << netId
            << R"(", "ENABLED": true}}})";
        std::ofstream(plantFile()) << plant;
    }
    ~Files() {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    std::filesystem::path config() const { return directory / "config.json"; }
    std::filesystem::path plantFile() const { return directory / "plant.json"; }

private:
    const std::filesystem::path directory = std::filesystem::temp_directory_path() /
                                            ("bench-" + std::to_string(std::random_device()()));
};

struct ServerInProcess::Server {
    explicit Server(const hmi::Options& options)
        : application(options), ended(std::async(std::launch::async, [this] {
              application.run();
          })) {}
    ~Server() {
        std::raise(SIGINT);
        ended.wait();
    }

    hmi::Application application;
    std::future<void> ended;
};

struct ServerInProcess::Client {
    explicit Client(std::uint16_t port) : port(port), requests(io), lines(io) { connect(); }

    void connect() {
        requests.close();
        requestBuffer.clear();
        requests.connect(loopback(port));
        requests.socket().set_option(tcp::no_delay(true));
    }

    asio::io_context io;
    const std::uint16_t port;
    beast::tcp_stream requests;
    beast::flat_buffer requestBuffer;
    beast::websocket::stream<beast::tcp_stream> lines;
    beast::flat_buffer lineBuffer;
};

ServerInProcess::ServerInProcess(unsigned eventLimit) : files(std::make_unique<Files>(eventLimit)) {
    hmi::configureHeap();
    hmi::configureLog(hmi::LogLevel::off, hmi::LogFormat::text);
    hmi::Options options;
    options.extension = boost::dll::shared_library::decorate(
        boost::dll::program_location().parent_path().string() + "/ZrHmiEventLogger");
    options.config = files->config();
    options.plant = files->plantFile();
    options.port = freePort();
    server = std::make_unique<Server>(options);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    for (;;) {
        try {
            client = std::make_unique<Client>(options.port);
            if (metric("hmi_target_imports_total{target=\"Filler\"}") > 0)
                return;
        } catch (const std::exception&) {
            // It does not listen yet.
        }
        expect(std::chrono::steady_clock::now() < end, "the server does not start");
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

ServerInProcess::~ServerInProcess() = default;

std::uint16_t ServerInProcess::port() const {
    return client->port;
}

void ServerInProcess::act(const std::string& actions) {
    char* answer = nullptr;
    const int code = ZrSimulatorApply(netId, actions.c_str(), &answer);
    ZrSimulatorFree(answer);
    expect(code == 200, "the runtime refuses");
}

std::string ServerInProcess::exchange(const char* method, const std::string& target,
                                      const std::string& body) {
    http::request<http::string_body> request(http::string_to_verb(method), target, 11, body);
    request.set(http::field::host, "localhost");
    if (!body.empty())
        request.set(http::field::content_type, "application/json");
    request.prepare_payload();
    for (bool isAgain = false;; isAgain = true) {
        http::response_parser<http::string_body> response;
        response.body_limit(boost::none);
        beast::error_code error;
        client->requests.expires_after(std::chrono::minutes(1));
        http::write(client->requests, request, error);
        if (!error)
            http::read(client->requests, client->requestBuffer, response, error);
        if (error && !isAgain) {
            client->connect();  // the server ends connections that have been idle for long
            continue;
        }
        expect(!error, target + ": " + error.message());
        expect(response.get().result_int() == 200, target + ": " + response.get().body());
        return std::move(response.get().body());
    }
}

std::string ServerInProcess::get(const std::string& target) {
    return exchange("GET", target, {});
}

std::string ServerInProcess::post(const std::string& target, const std::string& body) {
    return exchange("POST", target, body);
}

std::size_t ServerInProcess::total() {
    return json::parse(get("/api/events?limit=0")).at("total").to_number<std::size_t>();
}

void ServerInProcess::awaitTotal(std::size_t count) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (total() != count) {
        expect(std::chrono::steady_clock::now() < end, "events are missing");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

double ServerInProcess::metric(std::string_view sample) {
    const std::string text = get("/metrics");
    const auto at = text.find("\n" + std::string(sample) + " ");
    return at == std::string::npos ? 0 : std::stod(text.substr(at + sample.size() + 2));
}

void ServerInProcess::follow() {
    client->lines.next_layer().connect(loopback(client->port));
    client->lines.next_layer().socket().set_option(tcp::no_delay(true));
    client->lines.handshake("localhost", "/api/stream");
}

std::string ServerInProcess::awaitLine(std::string_view text) {
    for (;;) {
        client->lineBuffer.clear();
        client->lines.read(client->lineBuffer);
        std::string line = beast::buffers_to_string(client->lineBuffer.data());
        if (line.find(text) != std::string::npos)
            return line;
    }
}
