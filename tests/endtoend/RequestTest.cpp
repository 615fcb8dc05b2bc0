/// Requests that are not answered, or not to everybody.
#include <gmock/gmock.h>

#include "endtoend/ServerFixture.h"

namespace json = boost::json;

namespace {

/// What no test here may change.
class BadRequest : public testing::Test {
protected:
    BadRequest() {
        server.post("/api/commands",
                    json::array{{{"command", "host"},
                                 {"writeValue", {{{"do", "raise"}, {"id", 1}, {"raised", 1000}},
                                                 {{"do", "message"}, {"raised", 1000}}}}}});
        EXPECT_EQ(server.events().size(), 2U);
        before = state();
    }
    ~BadRequest() override { EXPECT_EQ(state(), before); }

    std::string state() const {
        return server.get("/api/events").body + server.get("/api/config").body +
               server.get("/api/log").body + server.configFile();
    }

    const ServerFixture server{
        TEST_EXTENSION_FILE,
        {{"TIMEOUT", "PT5S"}, {"TARGET_SYSTEMS", {{"A", {{"ADDRESS", "local"}}}}}}};
    std::string before;
};

TEST_F(BadRequest, IsAnsweredAndChangesNothing) {
    const std::string none;
    const std::string huge(std::size_t{2} << 20, ' ');
    const struct {
        unsigned status;
        const char* method;
        std::vector<std::string> targets;
        std::vector<std::string> bodies;
    } cases[] = {
        {404,
         "GET",
         {"/api/nothing", "/api/events/", "//", "/sim/1.2.3.4.5.6", "/api/events/2",
          "/api/events/one", "/api/events/m", "/api/events/99999999999999999999",
          "/api/config/NOTHING"},
         {none}},
        {404, "POST", {"/api/events/2/confirm"}, {none}},
        {405, "GET", {"/api/commands"}, {none}},
        {405, "POST", {"/api/events"}, {none}},
        {405, "DELETE", {"/api/events/1"}, {none}},
        {405, "PATCH", {"/api/config/TIMEOUT"}, {"1"}},
        {405, "PUT", {"/api/config"}, {"{}"}},
        {400,
         "GET",
         {"/api/events?kind=warning", "/api/events?state=new", "/api/events?severity=-1",
          "/api/events?severity=high", "/api/events?limit=1e3",
          "/api/events?offset=99999999999999999999999", "/api/events?colour=red",
          "/api/events?limit=1&limit=2", "/api/events?target=%F", "/api/events?target=%GG",
          "/api/events?target=%C3%28", "/api/events?target=%00", "/api/log?since=-1"},
         {none}},
        {400, "POST", {"/api/events/m2/confirm"}, {none}},
        {400,
         "POST",
         {"/api/commands"},
         {"", "{}", "[1]", R"([{"command": 1}])", R"([{"writeValue": 1}])",
          R"([{"command": "host", "value": 1}])", R"([{"command": "host"}] x)",
          std::string(100, '['), "[\"\xFF\"]"}},
        {413, "POST", {"/api/commands"}, {huge}},
        {400, "PUT", {"/api/config/A::::B", "/api/config/::A"}, {"1"}},
        {400, "PUT", {"/api/config/TIMEOUT"}, {"{", ""}},
        {400, "PUT", {"/api/config/TIMEOUT::SECONDS"}, {"1"}},
        {400, "PUT", {"/api/config/LIMIT_EVENT_COUNT"}, {"\"many\""}},
        {400, "PUT", {"/api/config/TARGET_SYSTEMS::A::ENABLED"}, {"\"yes\""}},
        {409, "PUT", {"/api/config/TARGET_SYSTEMS"}, {"{}"}},
        {409, "DELETE", {"/api/config/TARGET_SYSTEMS"}, {none}},
        {426, "GET", {"/api/stream"}, {none}},
    };
    for (const auto& item : cases) {
        for (const std::string& target : item.targets) {
            for (const std::string& body : item.bodies) {
                SCOPED_TRACE(item.method + (" " + target) + " " + body.substr(0, 100));
                const HttpAnswer answer = sendRequest(server.port(), item.method, target, body);
                EXPECT_EQ(answer.status, item.status);
                ASSERT_TRUE(answer.json().is_object()) << answer.body;
                EXPECT_TRUE(answer.json().at("error").is_string());
            }
        }
    }
}

TEST_F(BadRequest, ThatIsNoHttpEndsItsConnectionOnly) {
    const std::pair<std::string, unsigned> cases[] = {
        {"\x16\x03\x01 hello\r\n\r\n", 400},
        {"GET / HTTP/1.1\r\nLong: " + std::string(20000, 'x'), 431},
        {"POST /api/commands HTTP/1.1\r\nContent-Length: 9e9\r\n\r\n", 400},
        {"GET http://127.0.0.1/ HTTP/1.1\r\nHost: x\r\n\r\n", 400}};
    for (const auto& [bytes, status] : cases)
        EXPECT_EQ(sendRaw(server.port(), bytes).status, status) << bytes.substr(0, 50);
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
        {{{"Host", "localhost:80"}, {"Origin", "http://localhost:80"}}, 200},
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
