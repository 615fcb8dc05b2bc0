/// The server's side of the extension interface, with an extension that does as it is told.
#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include "endtoend/ServerFixture.h"

namespace json = boost::json;

namespace {

class HostTest : public testing::Test {
protected:
    HttpAnswer command(const char* name, const json::value& input = {}) {
        return server.post("/api/commands",
                           json::array{{{"command", name}, {"writeValue", input}}});
    }

    /// Makes the extension call the server.
    void call(const json::value& calls) { ASSERT_EQ(command("host", calls).status, 200U); }

    ServerFixture server{TEST_EXTENSION_FILE, {{"TIMEOUT", "PT5S"}}};
};

TEST_F(HostTest, AlarmsLiveAsTheExtensionTells) {
    StreamClient stream(server.port());
    call(json::parse(R"([
        {"do": "raise", "id": 1, "name": "N", "targetName": "A", "raised": 1000, "severity": 3,
         "confirmation": 2},
        {"do": "update", "id": 9},
        {"do": "remove", "id": 9},
        {"do": "update", "id": 1, "name": "U", "raised": 1000, "cleared": 2000},
        {"do": "remove", "id": 1, "raised": 1000},
        {"do": "raise", "id": 1, "raised": 3000},
        {"do": "drop", "id": 1},
        {"do": "drop", "id": 1},
        {"do": "message", "raised": 4000}])"));
    const json::value raised = stream.next().value();
    EXPECT_EQ(serialize(raised),
              R"({"type":"raised","event":{"id":1,"kind":"alarm","name":"N","domain":"",)"
              R"("severity":3,"timeReceived":"1970-01-01T00:00:01.0000000Z",)"
              R"("timeRaised":"1970-01-01T00:00:01.0000000Z","timeCleared":null,)"
              R"("timeConfirmed":null,"alarmState":0,"confirmationState":2,"active":true,)"
              R"("parameters":{"targetName":"A"}}})");
    const struct {
        const char* type;
        bool active;
        json::value cleared;
    } lines[] = {{"updated", false, "1970-01-01T00:00:02.0000000Z"},
                 {"removed", false, nullptr},  // the extension has ended it
                 {"raised", true, nullptr},
                 {"forgotten", true, nullptr},
                 {"message", false, nullptr}};
    for (const auto& [type, active, cleared] : lines) {
        const json::value line = stream.next().value();
        EXPECT_EQ(line.at("type"), type);
        EXPECT_EQ(line.at("event").at("active"), active) << type;
        EXPECT_EQ(line.at("event").at("timeCleared"), cleared) << type;
    }
    EXPECT_EQ(server.get("/api/events/1").status, 404U);
    EXPECT_EQ(server.events().size(), 1U);
}

TEST_F(HostTest, FiltersAndPagesSelect) {
    json::array calls;
    for (int id = 1; id <= 30; ++id)
        calls.push_back({{"do", "raise"},
                         {"id", id},
                         {"targetName", id % 2 ? "A" : "B"},
                         {"severity", id % 5},
                         {"cleared", id % 3 ? 0 : 2000},
                         {"confirmation", id % 10 ? 1 : 2}});
    call(calls);
    const struct {
        const char* query;
        const char* ids;
        int total;
    } cases[] = {{"target=A&severity=4", "29 19 9 ", 3},
                 {"state=cleared&target=B", "30 24 18 12 6 ", 5},
                 {"state=unconfirmed", "30 20 10 ", 3},
                 {"state=active&severity=3&target=A&kind=alarm", "29 23 19 13 ", 4},
                 {"offset=28", "2 1 ", 30},
                 {"target=B&offset=1&limit=2", "28 26 ", 15},
                 {"offset=30", "", 30},
                 {"state=active&severity=3&limit=0", "", 8},
                 {"kind=message", "", 0}};
    for (const auto& [query, ids, total] : cases) {
        std::string found;
        for (const json::value& event : server.events(query))
            found += serialize(event.at("id")) + " ";
        EXPECT_EQ(found, ids) << query;
        EXPECT_EQ(server.get(std::string("/api/events?") + query).json().at("total"), total);
    }
}

TEST_F(HostTest, LogKeepsItsOrderAndPages) {
    json::array calls;
    for (int i = 0; i < 5; ++i)
        calls.push_back({{"do", "log"}, {"name", "ENTRY" + std::to_string(i)}, {"extra", i}});
    call(calls);
    const json::value page = server.get("/api/log?since=1&limit=2").json();
    EXPECT_EQ(page.at("next"), 3);
    EXPECT_EQ(serialize(page.at("entries").at(0)),
              R"({"seq":1,"name":"ENTRY1","severity":0,"timeRaised":null,"domain":"",)"
              R"("parameters":{"extra":1}})");
    EXPECT_EQ(page.at("entries").as_array().size(), 2U);
    EXPECT_EQ(server.get("/api/log?since=99").json(),
              (json::value{{"next", 5}, {"entries", json::array()}}));
    EXPECT_THAT(server.get("/metrics").body,
                testing::HasSubstr("hmi_log_messages_total{name=\"ENTRY4\",target=\"\"} 1\n"));
}

TEST_F(HostTest, AStreamClientThatDoesNotReadIsDroppedAlone) {
    StreamClient idle(server.port());
    StreamClient reader(server.port());
    const json::array messages{{{"do", "message"}, {"extra", std::string(600'000, 'x')}}};
    const auto isDropped = [&] {
        return server.get("/metrics").body.find("hmi_stream_slow_clients_total 1\n") !=
               std::string::npos;
    };
    for (int sent = 0; sent < 200 && !isDropped(); ++sent) {
        call(messages);
        ASSERT_EQ(reader.next().value().at("type"), "message");
    }
    EXPECT_TRUE(isDropped());
    call(messages);
    EXPECT_EQ(reader.next().value().at("type"), "message");
}

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

}  // namespace
