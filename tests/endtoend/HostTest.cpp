/// The server's side of the extension interface, with an extension that does as it is told.
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include "endtoend/ServerFixture.h"

namespace json = boost::json;

namespace {

class HostTest : public testing::Test {
protected:
    static json::value config() {
        return {{"TIMEOUT", "PT5S"},
                {"LIMIT_EVENT_COUNT", 10},
                {"TARGET_SYSTEMS", {{"A", {{"ADDRESS", "1.2.3.4.5.6"}, {"ENABLED", true}}}}}};
    }

    HttpAnswer command(const char* name, const json::value& input = {}) {
        return server.post("/api/commands",
                           json::array{{{"command", name}, {"writeValue", input}}});
    }

    /// Makes the extension call the server.
    void call(const json::array& calls) { ASSERT_EQ(command("host", calls).status, 200U); }

    json::object event(const std::string& id) {
        return server.get("/api/events/" + id).json().as_object();
    }

    std::string ids(const std::string& query = "limit=1000") {
        std::string text;
        for (const json::value& item : server.events(query))
            text += serialize(item.at("id")) + " ";
        return text;
    }

    ServerFixture server{TEST_EXTENSION_FILE, config()};
};

std::string lastLogged(const ServerFixture& server, const std::string& name) {
    std::string parameters;
    const json::value log = server.get("/api/log").json();
    for (const json::value& entry : log.at("entries").as_array()) {
        if (entry.at("name").as_string() == name)
            parameters = serialize(entry.at("parameters"));
    }
    return parameters;
}

TEST_F(HostTest, AlarmsLiveAsTheExtensionTells) {
    StreamClient stream(server.port());
    const auto nextType = [&] { return std::string(stream.next().value().at("type").as_string()); };
    call({{{"call", "raise"},
           {"id", 1},
           {"target", "A"},
           {"raised", 1000},
           {"severity", 3},
           {"confirmation", 2}}});
    EXPECT_EQ(nextType(), "raised");
    EXPECT_EQ(serialize(event("1")),
              R"({"id":1,"kind":"alarm","name":"TEST","domain":"","severity":3,)"
              R"("timeReceived":"1970-01-01T00:00:01.0000000Z",)"
              R"("timeRaised":"1970-01-01T00:00:01.0000000Z","timeCleared":null,)"
              R"("timeConfirmed":null,"alarmState":0,"confirmationState":2,"active":true,)"
              R"("parameters":{"targetName":"A"}})");
    // Not held: neither an update nor an end makes an alarm.
    call({{{"call", "update"}, {"id", 9}}, {{"call", "remove"}, {"id", 9}}});
    call({{{"call", "update"},
           {"id", 1},
           {"target", "A"},
           {"raised", 1000},
           {"cleared", 2000},
           {"confirmation", 3}}});
    EXPECT_EQ(nextType(), "updated");
    EXPECT_EQ(event("1").at("timeCleared"), "1970-01-01T00:00:02.0000000Z");
    EXPECT_EQ(event("1").at("active"), false);
    call({{{"call", "remove"}, {"id", 1}, {"target", "A"}, {"raised", 1000}}});
    EXPECT_EQ(nextType(), "removed");
    EXPECT_EQ(event("1").at("active"), false) << "the extension has ended it";
    EXPECT_EQ(event("1").at("timeCleared"), nullptr);
    call({{{"call", "raise"}, {"id", 1}, {"target", "A"}, {"raised", 3000}}});
    EXPECT_EQ(nextType(), "raised");
    EXPECT_EQ(event("1").at("active"), true);
    call({{{"call", "drop"}, {"id", 1}, {"raised", 5}}, {{"call", "drop"}, {"id", 1}}});
    EXPECT_EQ(nextType(), "forgotten");
    EXPECT_EQ(server.get("/api/events/1").status, 404U);
}

TEST_F(HostTest, EqualMessagesAreDroppedOneByOne) {
    const json::object message{
        {"call", "message"}, {"target", "A"}, {"raised", 7000}, {"extra", "x"}};
    json::object other = message;
    other["extra"] = "y";
    json::object drop = message;
    drop["call"] = "drop";
    call({message, message, other});
    EXPECT_EQ(server.events("kind=message").size(), 3U);
    call({drop});
    EXPECT_EQ(server.events("kind=message&text=x").size(), 1U);
    call({drop, drop, drop});
    EXPECT_EQ(server.events("kind=message&text=X").size(), 0U);
    EXPECT_EQ(server.events("kind=message&text=Y").size(), 1U) << "it differs in a parameter";
}

TEST_F(HostTest, ResetReplacesEverythingButWhatHappensMeanwhile) {
    call({{{"call", "raise"}, {"id", 1}, {"target", "A"}, {"raised", 1000}},
          {{"call", "raise"}, {"id", 2}, {"target", "B"}, {"raised", 2000}},
          {{"call", "raise"}, {"id", 3}, {"target", "C"}, {"raised", 3000}}});
    EXPECT_EQ(ids(), "3 2 1 ");
    // A is handed over, then lives on; B is not yet handed over when it changes.
    command(
        "provide",
        {{{"target", "A"},
          {"events",
           {{{"id", 1}, {"target", "A"}, {"raised", 1000}}, {{"target", "A"}, {"raised", 1500}}}},
          {"then",
           {{{"call", "raise"}, {"id", 4}, {"target", "A"}, {"raised", 4000}},
            {{"call", "update"}, {"id", 1}, {"target", "A"}, {"raised", 1000}, {"cleared", 1001}},
            {{"call", "drop"}, {"target", "A"}, {"raised", 1500}},
            {{"call", "raise"}, {"id", 5}, {"target", "B"}, {"raised", 5000}}}}},
         {{"target", "B"}, {"events", {{{"id", 2}, {"target", "B"}, {"raised", 2000}}}}}});
    StreamClient stream(server.port());
    call({{{"call", "reset"}}});
    while (stream.next().value().at("type") != "reset") {
    }
    EXPECT_EQ(ids(), "4 2 1 ") << "5 is not in the later batch of B, and C handed over nothing";
    EXPECT_EQ(event("1").at("timeCleared"), "1970-01-01T00:00:01.0010000Z");
}

TEST_F(HostTest, FiltersAndPagesSelect) {
    json::array calls;
    for (int id = 1; id <= 30; ++id)
        calls.push_back({{"call", "raise"},
                         {"id", id},
                         {"target", id % 2 ? "A" : "B"},
                         {"raised", 1000},
                         {"severity", id % 5},
                         {"cleared", id % 3 ? 0 : 2000},
                         {"confirmation", id % 10 ? 1 : 2}});
    call(calls);
    EXPECT_EQ(ids("target=A&severity=4"), "29 19 9 ");
    EXPECT_EQ(ids("state=cleared&target=B"), "30 24 18 12 6 ");
    EXPECT_EQ(ids("state=unconfirmed"), "30 20 10 ");
    EXPECT_EQ(ids("state=active&severity=3&target=A&kind=alarm"), "29 23 19 13 ");
    EXPECT_EQ(ids("offset=28"), "2 1 ");
    EXPECT_EQ(ids("target=B&offset=1&limit=2"), "28 26 ");
    EXPECT_EQ(ids("offset=30"), "");
    EXPECT_EQ(server.get("/api/events?target=B&offset=1&limit=2").json().at("total"), 15);
    EXPECT_EQ(server.get("/api/events?state=active&severity=3&limit=0").json().at("total"), 8);
    EXPECT_EQ(server.get("/api/events?kind=message").json().at("total"), 0);
}

TEST_F(HostTest, TextsAreAddedWhereTheyCanBeHad) {
    call({{{"call", "raise"}, {"id", 1}, {"target", "A"}, {"raised", 1000}},
          {{"call", "raise"}, {"id", 2}, {"target", "A"}, {"raised", 2000}, {"extra", "fails"}}});
    const json::array list = server.events("locale=de-DE");
    EXPECT_FALSE(list[0].as_object().contains("text"));
    EXPECT_EQ(list[1].at("text"), "de-DE:TEST");
    EXPECT_EQ(list[1].at("eventClassName"), "class");
    EXPECT_EQ(list[1].at("parameters"), (json::value{{"targetName", "A"}}));
    EXPECT_EQ(server.events("locale=de-DE&text=fr:test").size(), 0U);
    EXPECT_EQ(server.events("locale=de-DE&text=DE:test").size(), 1U);
    const HttpAnswer refused = server.get("/api/events/1?locale=xx");
    EXPECT_EQ(refused.status / 100, 4U);
    EXPECT_EQ(refused.json().at("result"), 258);
    EXPECT_EQ(server.post("/api/events/1/confirm", nullptr).json(),
              (json::value{{"result", 1}, {"text", "TEST"}}));
}

TEST_F(HostTest, ConfigurationChangesAreToldAndRolledBack) {
    const json::value entry{{"ADDRESS", "6.5.4.3.2.1"}, {"ENABLED", false}};
    EXPECT_EQ(server.put("/api/config/TARGET_SYSTEMS::B", entry).json(),
              (json::value{{"result", 0}}));
    EXPECT_EQ(lastLogged(server, "CONFIG_SET"),
              R"({"0":"TARGET_SYSTEMS::B","1":{"ADDRESS":"6.5.4.3.2.1","ENABLED":false}})");
    EXPECT_EQ(json::parse(server.configFile()).at("TARGET_SYSTEMS").at("B"), entry);

    server.put("/api/config/TARGET_SYSTEMS::B::ENABLED", true);
    EXPECT_EQ(lastLogged(server, "CONFIG_SET"),
              R"({"0":"TARGET_SYSTEMS::B","1":{"ADDRESS":"6.5.4.3.2.1","ENABLED":true}})");

    const std::string before = server.configFile();
    const HttpAnswer refused = server.put("/api/config/TARGET_SYSTEMS::B::REFUSE", 269);
    EXPECT_EQ(refused.status / 100, 4U);
    EXPECT_EQ(refused.json().at("result"), 269);
    EXPECT_EQ(server.configFile(), before);
    EXPECT_EQ(server.get("/api/config/TARGET_SYSTEMS::B::REFUSE").status, 404U);

    EXPECT_EQ(server.erase("/api/config/TARGET_SYSTEMS::B").json(), (json::value{{"result", 0}}));
    EXPECT_EQ(lastLogged(server, "CONFIG_DELETED"), R"({"0":"TARGET_SYSTEMS::B","1":null})");
    EXPECT_EQ(server.put("/api/config/LIMIT_EVENT_COUNT", 5).json(), (json::value{{"result", 0}}));
    json::value expected = config();
    expected.as_object()["LIMIT_EVENT_COUNT"] = 5;
    EXPECT_EQ(server.get("/api/config").json(), expected);
    EXPECT_EQ(json::parse(server.configFile()), expected);
}

TEST_F(HostTest, LogKeepsItsOrderAndPages) {
    json::array calls;
    for (int i = 0; i < 5; ++i)
        calls.push_back({{"call", "log"}, {"name", "ENTRY" + std::to_string(i)}, {"extra", i}});
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
    const json::array messages{
        {{"call", "message"}, {"extra", std::string(std::size_t{600} << 10, 'x')}}};
    const auto isDropped = [&] {
        return server.get("/metrics").body.find("hmi_stream_slow_clients_total 1\n") !=
               std::string::npos;
    };
    for (int megabytes = 0; megabytes < 100 && !isDropped(); ++megabytes) {
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
    EXPECT_THAT(server.process().errors(),
                testing::HasSubstr("shut down\ndestroyed with 0 listeners\n"));
}

}  // namespace
