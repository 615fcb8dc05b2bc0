/// The server's side of the extension interface and of HTTP, with an extension that does little.
#include <algorithm>
#include <future>
#include <thread>

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include "endtoend/ServerFixture.h"

namespace json = boost::json;

namespace {

class HostTest : public testing::Test {
protected:
    HttpAnswer command(const char* name, const json::value& input = {}) {
        return server.send("POST", "/api/commands",
                           json::array{{{"command", name}, {"writeValue", input}}});
    }

    ServerFixture server{
        TEST_EXTENSION_FILE,
        {{"TIMEOUT", "PT5S"},
         {"TARGET_SYSTEMS", {{"A", {{"ADDRESS", "local"}, {"ENABLED", false}}}}}},
        {},
        {"--allow-host", "HMI.plant.example"}};
};

TEST_F(HostTest, ListenersComeAndGoInsideTheirCallsAndTheExtensionLeavesInOrder) {
    EXPECT_EQ(command("throw").status, 500U) << "an exception is an answer, not the end";
    EXPECT_EQ(command("echo", {{"a", {1, 2.5, "x", nullptr, true}}}).json().at(0),
              json::parse(R"({"command": "echo", "extensionResult": 293, "resultString": "",
                              "readValue": {"a": [1, 2.5, "x", null, true]}})"));
    EXPECT_EQ(command("unregister").status, 200U);
    EXPECT_EQ(command("echo").status, 503U);
    StreamClient stream(server.port());
    EXPECT_EQ(server.stop(), 0);
    EXPECT_EQ(stream.next(), std::nullopt);
    EXPECT_THAT(server.errors(), testing::HasSubstr("shut down\ndestroyed without listeners\n"));
}

TEST_F(HostTest, StoppingRefusesWhatWaitsAndEndsWhatRuns) {
    const auto asynchronously = [&](const char* name) {
        return std::async(std::launch::async, [this, name] { return command(name, "A"); });
    };
    const auto running = asynchronously("hang");
    auto second = asynchronously("hang");
    ASSERT_TRUE(
        eventually([&] { return server.hasMetric("hmi_lane_running{lane=\"commands\"} 2"); }));
    auto queued = asynchronously("echo");
    ASSERT_TRUE(
        eventually([&] { return server.hasMetric("hmi_lane_waiting{lane=\"commands\"} 1"); }));
    EXPECT_EQ(command("echo", "B").status, 200U) << "another target system's";
    EXPECT_EQ(server.stop(), 0);
    EXPECT_EQ(queued.get().status, 503U);
    EXPECT_EQ(second.get().status, 200U) << "it ran, and had its answer";
    EXPECT_THAT(server.errors(), testing::AllOf(testing::HasSubstr("shut down\n"),
                                                testing::HasSubstr("destroyed without listeners\n")));
}

/// An extension by somebody else, who had the headers and nothing more.
TEST(HeartbeatTest, WhatIsNotAliveIsAnAlarmUntilItIs) {
    ServerFixture server{HEARTBEAT_FILE,
                         {{"TIMEOUT", "PT0.2S"}, {"TARGET_SYSTEMS", json::object()}}};
    const auto alarm = [&] {
        const json::value events = server.get("/api/events?locale=de-DE").json().at("events");
        return events.as_array().empty() ? json::object() : events.at(0).as_object();
    };
    ASSERT_TRUE(eventually([&] { return !alarm().empty(); }));
    EXPECT_EQ(alarm().at("text"), "Kein Puls");
    EXPECT_TRUE(alarm().at("active").as_bool());
    EXPECT_EQ(server.send("POST", "/api/events/1/confirm").json().at("result"), 0);
    EXPECT_EQ(alarm().at("confirmationState"), 3);
    server.send("POST", "/api/commands", json::array{{{"command", "Beat"}}});
    EXPECT_FALSE(alarm().at("active").as_bool());
    EXPECT_TRUE(eventually([&] { return alarm().at("id") == 2; })) << "and so on";
    EXPECT_EQ(server.stop(), 0);
}

/// The end of a server whose extension hangs before or after it listens.
class StopTest : public testing::Test {
protected:
    std::vector<std::string> arguments(const char* config) {
        return {"--extension", TEST_EXTENSION_FILE,
                "--config",    files.write("config.json", config),
                "--port",      "0",
                "--log-level", "debug"};
    }
    static bool hangs(ChildProcess& server) {
        return eventually([&] { return server.errors().find("hanging") != std::string::npos; });
    }
    /// Has it execute a command that does not return.
    static std::thread hang(ChildProcess& server) {
        EXPECT_TRUE(eventually([&] { return server.output().ends_with('\n'); }));
        const std::string line = server.output();
        const auto port = static_cast<std::uint16_t>(std::stoi(line.substr(line.rfind(':') + 1)));
        std::thread client([port] {
            EXPECT_ANY_THROW(sendRequest(
                port, "POST", "/api/commands",
                R"([{"command": "hang for ever", "writeValue": {"targetName": "Filler"}}])"));
        });
        EXPECT_TRUE(hangs(server));
        return client;
    }

    const TemporaryDirectory files;
};

TEST_F(StopTest, DuringInitIsHeardByTheExtension) {
    ChildProcess server(SERVER_FILE, arguments(R"({"TIMEOUT": "PT60S", "HANG_IN_INIT": true})"));
    ASSERT_TRUE(hangs(server));
    const std::string log = server.errors();
    const auto at = log.find("127.0.0.1:");
    ASSERT_NE(at, std::string::npos) << log;
    const auto port = static_cast<std::uint16_t>(std::stoi(log.substr(at + 10)));
    for (const char* early : {"/healthz", "/api/version"})
        EXPECT_EQ(sendRequest(port, "GET", early).status, 200U);
    for (const char* later : {"/readyz", "/", "/api/events"})
        EXPECT_EQ(sendRequest(port, "GET", later).status, 503U) << later;
    EXPECT_ANY_THROW(StreamClient{port});
    server.interrupt();
    EXPECT_EQ(server.wait(), 0);
    EXPECT_THAT(server.errors(), testing::HasSubstr("stopping\nshut down\ndestroyed without"));
}

TEST_F(StopTest, WaitsForTheExtensionNoLongerThanItsTimeout) {
    ChildProcess server(SERVER_FILE, arguments(R"({"TIMEOUT": "PT0.2S"})"));
    std::thread client = hang(server);
    server.interrupt();
    EXPECT_EQ(server.wait(), 0);
    EXPECT_THAT(server.errors(), testing::HasSubstr("waiting for 1 commands of Filler"));
    EXPECT_THAT(server.errors(), testing::HasSubstr("does not let go"));
    client.join();
}

TEST_F(StopTest, ASecondTimeIsAtOnce) {
    ChildProcess server(SERVER_FILE, arguments(R"({"TIMEOUT": "PT1H"})"));
    std::thread client = hang(server);
    server.interrupt();
    EXPECT_TRUE(eventually([&] { return server.errors().find("stopping") != std::string::npos; }));
    server.interrupt();
    EXPECT_EQ(server.wait(), 0);
    client.join();
}

/// Expects that no request of a test changes anything.
class BadRequest : public HostTest {
protected:
    BadRequest() : before(state()) {}
    ~BadRequest() override { EXPECT_EQ(state(), before); }

    std::string state() const {
        return server.get("/api/events").body + server.get("/api/config").body +
               server.get("/api/log").body + server.configFile();
    }

    const std::string before;
};

std::string manyParameters() {
    std::string query;
    for (int i = 0; i < 33; ++i)
        query += "p" + std::to_string(i) + "&";
    return query;
}

TEST_F(BadRequest, IsAnsweredAndChangesNothing) {
    const struct {
        unsigned status;
        std::string begin;              ///< of each request: method, target and body
        std::vector<std::string> ends;  ///< what differs
    } cases[] = {
        {404, "GET /", {"/", "api/nothing", "sim/1.2.3.4.5.6", "api/config/NOTHING"}},
        {404, "POST /api/events/2/", {"confirm"}},
        {404, "GET /api/events/", {"", "2", "one", "m", "99999999999999999999"}},
        {405,
         "",
         {"GET /api/commands", "POST /api/events", "DELETE /api/events/1", "PUT /api/config {}",
          "PATCH /api/config/TIMEOUT 1"}},
        {400,
         "GET /api/events?",
         {"kind=warning", "state=new", "severity=-1", "severity=high", "limit=1e3", "colour=red",
          "offset=99999999999999999999999", "limit=1&limit=2", "target=%F", "target=%GG",
          "target=%C3%28", "target=%00"}},
        {400, "", {"GET /api/log?since=-1"}},
        {400,
         "POST /api/commands ",
         {"", "{}", "[1]", "[{\"command\": 1}]", "[{\"writeValue\": 1}]",
          "[{\"command\": \"host\", \"value\": 1}]", "[{\"command\": \"host\"}] x", "[\"\xFF\"]"}},
        {400, "POST /api/commands ", {std::string(100, '[')}},
        {413, "POST /api/commands ", {std::string(std::size_t{2} << 20, ' ')}},
        {413, "POST /sim/1.2.3.4.5.6 ", {std::string(std::size_t{2} << 20, ' ')}},
        {413, "POST /api/session ", {std::string(5000, ' ')}},
        {400, "GET /healthz?", {manyParameters()}},
        {400,
         "PUT /api/config/",
         {"A::::B 1", "::A 1", "TIMEOUT {", "TIMEOUT", "TIMEOUT::SECONDS 1",
          "LIMIT_EVENT_COUNT \"many\"", "PRELOAD_TRANSLATIONS \"yes\""}},
        {409, "", {"PUT /api/config/TARGET_SYSTEMS {}", "DELETE /api/config/TARGET_SYSTEMS"}},
        {426, "", {"GET /api/stream"}},
    };
    for (const auto& item : cases) {
        for (const std::string& end : item.ends) {
            const std::string request = item.begin + end;
            SCOPED_TRACE(request.substr(0, 100));
            const std::size_t target = request.find(' ') + 1;
            const std::size_t body = std::min(request.find(' ', target), request.size());
            const HttpAnswer answer =
                sendRequest(server.port(), request.substr(0, target - 1),
                            request.substr(target, body - target), request.substr(body));
            EXPECT_EQ(answer.status, item.status);
            EXPECT_TRUE(answer.json().at("error").is_string());
        }
    }
}

/// The status codes of all answers in what a server sent.
std::string statusesOf(const std::string& received) {
    std::string statuses;
    constexpr std::string_view mark = "HTTP/1.1 ";
    for (auto at = received.find(mark); at != std::string::npos; at = received.find(mark, at + 1))
        statuses += (statuses.empty() ? "" : " ") + received.substr(at + mark.size(), 3);
    return statuses;
}

/// The answers to bytes on one connection, of which an honest request is the last. One that is
/// missing or too much shows that the server sees other bounds of a request than a proxy does.
TEST_F(BadRequest, EndsWhereEverybodySeesItsEnd) {
    const std::string host = "Host: 127.0.0.1\r\n";
    const std::string last = "GET /api/version HTTP/1.1\r\n" + host + "Connection: close\r\n\r\n";
    const std::string post = "POST /api/commands HTTP/1.1\r\n" + host;
    const std::string chunked = post + "Transfer-Encoding: chunked\r\n\r\n";
    const std::string endless(200'000, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {"", "200"},
        {"\x16\x03\x01 hello\r\n\r\n", "400"},
        {"GET /\r\n\r\n", "400"},
        {"GET / HTTP/2.0\r\n" + host + "\r\n", "400"},
        {"GET / HTTP/1.1\r\n\r\n", "400"},
        {"GET / HTTP/1.1\r\n" + host + host + "\r\n", "400"},
        {"GET / HTTP/1.1\r\n" + host + "Long: " + endless, "431"},
        {"GET / HTTP/1.1\r\nBad Name: x\r\n" + host + "\r\n", "400"},
        {"GET / HTTP/1.1\r\nHost : 127.0.0.1\r\n\r\n", "400"},
        {"HEAD / HTTP/1.1\r\n" + host + "\r\n", "200 200"},
        {"HEAD /api/log HTTP/1.1\r\n" + host + "\r\n", "200 200"},
        {"HEAD /nothing HTTP/1.1\r\n" + host + "\r\n", "404 200"},
        {"GET http://127.0.0.1/ HTTP/1.1\r\nHost: x\r\n\r\n", "200 200"},
        {"GET HTTPS://127.0.0.1/ HTTP/1.1\r\nHost: x\r\n\r\n", "200 200"},
        {"GET http://evil.example/ HTTP/1.1\r\n" + host + "\r\n", "403 200"},
        {"GET ftp://127.0.0.1/ HTTP/1.1\r\n" + host + "\r\n", "400 200"},
        {"GET //evil.example/ HTTP/1.1\r\n" + host + "\r\n", "404 200"},
        {"OPTIONS * HTTP/1.1\r\n" + host + "\r\n", "400 200"},
        {"CONNECT 127.0.0.1:80 HTTP/1.1\r\n" + host + "\r\n", "400 200"},
        {post + "Content-Length: 2\r\n\r\n[]", "200 200"},
        {post + "Content-Length: 9e9\r\n\r\n", "400"},
        {post + "Content-Length: -1\r\n\r\n", "400"},
        {post + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n[]", "400"},
        {post + "Content-Length: 2\r\nContent-Length: 2\r\n\r\n[]", "400"},
        {post + "Content-Length: 99999999999\r\n\r\n", "413"},
        {post + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", "400"},
        {post + "Transfer-Encoding: gzip\r\n\r\n", "501"},
        {post + "Transfer-Encoding: gzip, chunked\r\n\r\n0\r\n\r\n", "501"},
        {post + "Transfer-Encoding: chunked, identity\r\n\r\n0\r\n\r\n", "501"},
        {post + "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n",
         "400"},
        {"POST /api/commands HTTP/1.0\r\n" + host + "Transfer-Encoding: chunked\r\n\r\n", "400"},
        {chunked + "2\r\n[]\r\n0\r\n\r\n", "200 200"},
        {chunked + "2;name=value\r\n[]\r\n0\r\nTrailer: x\r\n\r\n", "200 200"},
        {chunked + "2;" + endless, "431"},
        {chunked + "2\r\n[]\r\n0\r\nTrailer: " + endless, "431"},
        {chunked + "zz\r\n", "400"},
        {chunked + "fffffffffffffffff\r\n", "400"},
        {chunked + "200000\r\n", "413"},
    };
    for (const auto& [bytes, statuses] : cases)
        EXPECT_EQ(statusesOf(exchange(server.port(), bytes + last)), statuses)
            << bytes.substr(0, 120);
    for (const std::string& refused :
         {"HEAD / HTTP/1.1\r\n\r\n" + last,
          "HEAD / HTTP/1.1\r\n" + host + "Content-Length: 9999999\r\n\r\n" + last})
        EXPECT_THAT(exchange(server.port(), refused), testing::EndsWith("\r\n\r\n"));
    EXPECT_EQ(statusesOf(exchange(server.port(), post + "Content-Length: 2\r\n\r\n[]", true)),
              "200")
        << "who has said all that he wants to say can still listen";
}

TEST_F(HostTest, AnswersFitWhatTheClientHasAndTakes) {
    const std::string get = "GET /page/main.js HTTP/1.1\r\nHost: localhost\r\n";
    const std::string end = "Connection: close\r\n\r\n";
    const std::string plain = exchange(server.port(), get + end);
    const std::string packed = exchange(server.port(), get + "Accept-Encoding: br, gzip\r\n" + end);
    EXPECT_LT(packed.size(), plain.size() / 2);
    EXPECT_THAT(packed, testing::HasSubstr("\r\nContent-Encoding: gzip\r\n"));
    for (const char* none : {"gzip;q=0", "br"})
        EXPECT_EQ(exchange(server.port(), get + "Accept-Encoding: " + none + "\r\n" + end), plain);

    const auto tag = plain.find("ETag: ");
    ASSERT_NE(tag, std::string::npos);
    const std::string held = plain.substr(tag + 6, plain.find("\r\n", tag) - tag - 6);
    const std::string kept = exchange(server.port(), get + "If-None-Match: " + held + "\r\n" + end);
    EXPECT_THAT(kept, testing::StartsWith("HTTP/1.1 304 "));
    EXPECT_THAT(kept, testing::EndsWith("\r\n\r\n")) << "without a body";
    const std::string head = exchange(server.port(), "HEAD" + get.substr(3) + end);
    EXPECT_EQ(head, plain.substr(0, plain.find("\r\n\r\n") + 4)) << "the same without the body";
}

TEST_F(BadRequest, OfForeignPagesIsRefused) {
    const std::string own = "http://127.0.0.1:" + std::to_string(server.port());
    const struct {
        HttpHeaders headers;
        unsigned status;
    } cases[] = {
        {{{"Origin", own}}, 200},
        {{{"Origin", "http://evil.example"}}, 403},
        {{{"Origin", "null"}}, 403},
        {{{"Origin", "http://127.0.0.1:1"}}, 403},
        {{{"Host", "evil.example"}}, 403},
        {{{"Host", "evil.example"}, {"Origin", "http://evil.example"}}, 403},
        {{{"Host", "[::1].evil.example"}}, 403},
        {{{"Host", "127.0.0.1:80@evil.example"}}, 403},
        {{{"Host", "evil.example@localhost"}}, 403},
        {{{"Host", "127.0.0.1.evil.example"}}, 403},
        {{{"Host", "localhost.evil.example"}}, 403},
        {{{"Origin", "http://localhost.evil.example"}}, 403},
        {{{"Host", "evil.example:127.0.0.1"}}, 403},
        {{{"Host", ""}}, 403},
        {{{"Origin", "http://127.0.0.1:80@evil.example"}}, 403},
        {{{"Origin", "file://127.0.0.1"}}, 403},
        {{{"Origin", own + "/page"}}, 403},
        {{{"Host", "[::1]:80"}, {"Origin", "http://[::1]"}}, 200},
        {{{"Host", "localhost:80"}, {"Origin", "http://localhost:80"}}, 200},
        {{{"Host", "LOCALHOST:443"}, {"Origin", "https://localhost"}}, 200},
        {{{"Host", "hmi.plant.example"}}, 200},
        {{{"Origin", "https://hmi.plant.example"}}, 200},
    };
    for (const auto& [headers, status] : cases) {
        SCOPED_TRACE(headers.front().first + " " + headers.front().second);
        EXPECT_EQ(sendRequest(server.port(), "POST", "/api/commands", "[]", headers).status,
                  status);
        if (status == 200)
            EXPECT_NO_THROW(StreamClient(server.port(), headers));
        else
            EXPECT_ANY_THROW(StreamClient(server.port(), headers));
    }
}

}  // namespace
