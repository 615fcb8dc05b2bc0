#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include "endtoend/ServerFixture.h"

namespace json = boost::json;

namespace {

class BadRequest : public testing::Test {
protected:
    static json::value config() {
        return {{"TIMEOUT", "PT5S"}, {"TARGET_SYSTEMS", {{"A", {{"ADDRESS", "local"}}}}}};
    }

    /// All that a request could have changed.
    std::string state() {
        return server.get("/api/events").body + server.get("/api/config").body +
               server.get("/api/log").body + server.configFile();
    }

    void SetUp() override {
        server.post("/api/commands",
                    json::array{{{"command", "host"},
                                 {"writeValue",
                                  {{{"call", "raise"}, {"id", 1}, {"raised", 1000}},
                                   {{"call", "message"}, {"raised", 1000}}}}}});
        ASSERT_EQ(server.events().size(), 2U);
    }

    ServerFixture server{TEST_EXTENSION_FILE, config()};
};

TEST_F(BadRequest, IsAnsweredAndChangesNothing) {
    const std::string before = state();
    const std::string deep(100, '[');
    const struct {
        const char* method;
        std::string target;
        std::string body;
        unsigned status;
    } cases[] = {
        {"GET", "/api/nothing", "", 404},
        {"GET", "/api/events/", "", 404},
        {"GET", "//", "", 404},
        {"GET", "/sim/1.2.3.4.5.6", "", 404},
        {"POST", "/api/events", "", 405},
        {"DELETE", "/api/events/1", "", 405},
        {"PATCH", "/api/config/TIMEOUT", "1", 405},
        {"PUT", "/api/config", "{}", 405},
        {"GET", "/api/commands", "", 405},
        {"GET", "/api/events?kind=warning", "", 400},
        {"GET", "/api/events?state=new", "", 400},
        {"GET", "/api/events?severity=-1", "", 400},
        {"GET", "/api/events?severity=high", "", 400},
        {"GET", "/api/events?limit=1e3", "", 400},
        {"GET", "/api/events?offset=99999999999999999999999", "", 400},
        {"GET", "/api/events?colour=red", "", 400},
        {"GET", "/api/events?limit=1&limit=2", "", 400},
        {"GET", "/api/events?target=%F", "", 400},
        {"GET", "/api/events?target=%GG", "", 400},
        {"GET", "/api/events?target=%C3%28", "", 400},
        {"GET", "/api/events?target=%00", "", 400},
        {"GET", "/api/events/2", "", 404},
        {"GET", "/api/events/one", "", 404},
        {"GET", "/api/events/m", "", 404},
        {"GET", "/api/events/99999999999999999999", "", 404},
        {"GET", "/api/log?since=-1", "", 400},
        {"POST", "/api/events/2/confirm", "", 404},
        {"POST", "/api/events/m2/confirm", "", 400},
        {"POST", "/api/commands", "", 400},
        {"POST", "/api/commands", "{}", 400},
        {"POST", "/api/commands", "[1]", 400},
        {"POST", "/api/commands", R"([{"command": 1}])", 400},
        {"POST", "/api/commands", R"([{"writeValue": 1}])", 400},
        {"POST", "/api/commands", R"([{"command": "host", "value": 1}])", 400},
        {"POST", "/api/commands", R"([{"command": "host"}] x)", 400},
        {"POST", "/api/commands", deep, 400},
        {"POST", "/api/commands", "[\"\xFF\"]", 400},
        {"POST", "/api/commands", std::string(std::size_t{2} << 20, ' '), 413},
        {"GET", "/api/config/NOTHING", "", 404},
        {"PUT", "/api/config/A::::B", "1", 400},
        {"PUT", "/api/config/::A", "1", 400},
        {"PUT", "/api/config/TIMEOUT", "{", 400},
        {"PUT", "/api/config/TIMEOUT", "", 400},
        {"PUT", "/api/config/TIMEOUT::SECONDS", "1", 400},
        {"PUT", "/api/config/LIMIT_EVENT_COUNT", "\"many\"", 400},
        {"PUT", "/api/config/TARGET_SYSTEMS", "{}", 409},
        {"DELETE", "/api/config/TARGET_SYSTEMS", "", 409},
        {"PUT", "/api/config/TARGET_SYSTEMS::A::ENABLED", "\"yes\"", 400},
        {"GET", "/api/stream", "", 426},
    };
    for (const auto& item : cases) {
        const std::string name = std::string(item.method) + " " + item.target;
        const HttpAnswer answer = sendRequest(server.port(), item.method, item.target, item.body);
        EXPECT_EQ(answer.status, item.status) << name << " " << item.body.substr(0, 100);
        ASSERT_TRUE(answer.json().is_object()) << name << " " << answer.body;
        EXPECT_TRUE(answer.json().at("error").is_string()) << name;
    }
    EXPECT_EQ(state(), before);
}

TEST_F(BadRequest, ThatIsNoHttpEndsItsConnectionOnly) {
    const std::string before = state();
    EXPECT_EQ(sendRaw(server.port(), "\x16\x03\x01 hello\r\n\r\n"), 400U);
    EXPECT_EQ(sendRaw(server.port(), "GET / HTTP/1.1\r\nLong: " + std::string(20000, 'x')), 431U);
    EXPECT_EQ(sendRaw(server.port(), "POST /api/commands HTTP/1.1\r\nContent-Length: 9e9\r\n\r\n"),
              400U);
    EXPECT_EQ(sendRaw(server.port(), "GET http://127.0.0.1/ HTTP/1.1\r\nHost: x\r\n\r\n"), 400U);
    EXPECT_EQ(state(), before);
}

TEST_F(BadRequest, OfForeignPagesIsRefused) {
    const std::string before = state();
    const std::string own = "127.0.0.1:" + std::to_string(server.port());
    const struct {
        HttpHeaders headers;
        unsigned status;
    } cases[] = {
        {{{"Origin", "http://" + own}}, 200},
        {{{"Origin", "http://evil.example"}}, 403},
        {{{"Origin", "null"}}, 403},
        {{{"Origin", "http://127.0.0.1:1"}}, 403},
        {{{"Host", "evil.example"}}, 403},
        {{{"Host", "evil.example"}, {"Origin", "http://evil.example"}}, 403},
        {{{"Host", "localhost:80"}, {"Origin", "http://localhost:80"}}, 200},
    };
    for (const auto& item : cases) {
        const std::string name = item.headers[0].first + " " + item.headers[0].second;
        EXPECT_EQ(sendRequest(server.port(), "POST", "/api/commands", "[]", item.headers).status,
                  item.status)
            << name;
        if (item.status == 200)
            EXPECT_NO_THROW(StreamClient(server.port(), item.headers)) << name;
        else
            EXPECT_ANY_THROW(StreamClient(server.port(), item.headers)) << name;
    }
    EXPECT_EQ(state(), before);
}

}  // namespace
