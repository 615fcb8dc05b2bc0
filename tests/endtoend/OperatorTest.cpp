/// What operators may trust: confirmations, target systems, what was known last.
#include <future>
#include <string>

#include <gmock/gmock.h>

#include "endtoend/PlantScenario.h"

namespace json = boost::json;

namespace {

class Operator : public PlantScenario {
protected:
    json::object alarmOf(const std::string& target) {
        return server.events("lastKnown=1&kind=alarm&target=" + target).at(0).as_object();
    }

    HttpAnswer confirm(const json::object& seen, json::object body) {
        return server.send("POST", "/api/events/" + serialize(seen.at("id")) + "/confirm", body);
    }

    bool isConfirmation(const std::string& target, const char* state) {
        return eventually([&] {
            const json::object alarm = alarmOf(target);
            return alarm.contains("confirmation") && alarm.at("confirmation").at("state") == state;
        });
    }

    json::object targetOf(const char* name) {
        const json::value answer = server.get("/api/targets").json();
        for (const json::value& target : answer.as_array()) {
            if (target.at("name") == name)
                return target.as_object();
        }
        return {{"state", "none"}};
    }

    bool isTarget(const char* name, const char* state) {
        return eventually([&] { return targetOf(name).at("state") == state; });
    }
};

TEST_F(Operator, ConfirmsWhatWasSeenAndSeesWhatBecomesOfIt) {
    raise(filler, "low");
    raise(packer, "jam");
    ASSERT_TRUE(reaches("kind=alarm", 2));
    const json::object seen = alarmOf("Filler");
    StreamClient stream(server.port(), {}, "/api/stream?types=confirmation");

    const HttpAnswer other = confirm(seen, {{"timeRaised", "2024-05-01T06:00:00Z"}});
    EXPECT_EQ(other.status, 409U);
    EXPECT_EQ(other.json().at("current").at("timeRaised"), seen.at("timeRaised"));
    for (const char* refused : {R"({"timeRaised": "at noon"})", R"({"comment": 5})", R"([])",
                                R"({"timeRaise": "2024-05-01T06:00:00Z"})"})
        EXPECT_EQ(server.send("POST", "/api/events/1/confirm", json::parse(refused)).status, 400U);
    EXPECT_FALSE(alarmOf("Filler").contains("confirmation")) << "nothing was sent";

    act(filler, R"([{"do": "fail", "call": "Confirm", "hresult": "0x80004005"}])");
    EXPECT_NE(confirm(seen, {}).json().at("result"), 0);
    EXPECT_EQ(next(stream, "confirmation").at("confirmation").at("state"), "requested");
    const json::value failed = next(stream, "confirmation").at("confirmation");
    EXPECT_EQ(failed.at("state"), "failed");
    EXPECT_NE(failed.at("text"), "");

    act(filler, R"({"do": "hold"})");
    const json::object again{{"timeRaised", seen.at("timeRaised")}, {"comment", "on my way"}};
    EXPECT_EQ(confirm(seen, again).json().at("result"), 0);
    EXPECT_TRUE(isConfirmation("Filler", "accepted")) << "it can be asked for again";
    const json::object jam = alarmOf("Packer");
    act(packer, R"({"do": "delay", "call": "Confirm", "ms": 1500})");
    const json::value slow{{"events", json::array(10, json::object{{"id", jam.at("id")}})}};
    auto late = std::async(std::launch::async, [&] {
        return server.send("POST", "/api/confirmations", slow).json().at(9).at("status");
    });
    EXPECT_TRUE(isConfirmation("Filler", "unanswered")) << "the logger keeps silent";
    EXPECT_EQ(late.get(), 504);
    EXPECT_TRUE(eventually([&] {
        return server.errors().find("not asked for: the time was up") != std::string::npos;
    })) << "nothing is confirmed that an operator was told is not";
    act(filler, R"({"do": "release"})");
    EXPECT_TRUE(isConfirmation("Filler", "confirmed")) << "late, but it says so";
    const json::value confirmed = alarmOf("Filler").at("confirmation");
    EXPECT_EQ(confirmed.at("by"), "127.0.0.1");
    EXPECT_EQ(confirmed.at("comment"), "on my way");

    act(packer, R"({"do": "delay", "call": "Confirm", "ms": 0})");
    const json::value many{{"events",
                            {{{"id", jam.at("id")}, {"timeRaised", jam.at("timeRaised")}},
                             {{"id", seen.at("id")}, {"timeRaised", "2024-05-01T06:00:00Z"}},
                             {{"id", 999}},
                             {{"id", "m1"}}}}};
    const json::value outcomes = server.send("POST", "/api/confirmations", many).json();
    std::string statuses;
    for (const json::value& outcome : outcomes.as_array())
        statuses += serialize(outcome.at("status")) + " ";
    EXPECT_EQ(statuses, "200 409 404 400 ");
    EXPECT_TRUE(isConfirmation("Packer", "confirmed"));
    const json::value none{{"events", json::array()}};
    EXPECT_EQ(server.send("POST", "/api/confirmations", none).json(), json::array());
    const json::value tooMany{{"events", json::array(1001, json::object{{"id", 1}})}};
    EXPECT_EQ(server.send("POST", "/api/confirmations", tooMany).status, 400U);
}

TEST_F(Operator, SeesALostTargetSystemAndWhatWasKnownOfItLast) {
    raise(packer, "jam");
    ASSERT_TRUE(reaches("target=Packer&state=active", 1));
    ASSERT_TRUE(isTarget("Packer", "good"));
    ASSERT_TRUE(isTarget("Nowhere", "lost"));
    const json::object good = targetOf("Packer");
    EXPECT_EQ(good.at("address"), json::value(packer));
    EXPECT_EQ(good.at("import").at("logged"), 1);
    EXPECT_TRUE(
        eventually([&] { return targetOf("Packer").at("counters").at("activeAlarmsCount") == 1; }));
    EXPECT_TRUE(good.contains("lastNotification"));
    const json::object seen = alarmOf("Packer");

    act(packer, R"([{"do": "refuse", "hresult": "0x98110007"}, {"do": "drop"}])");
    ASSERT_TRUE(isTarget("Packer", "lost"));
    EXPECT_NE(targetOf("Packer").at("error").at("text"), "");
    ASSERT_TRUE(reaches("target=Packer&kind=alarm", 0));
    const json::object lost = alarmOf("Packer");
    EXPECT_EQ(lost.at("id"), seen.at("id"));
    EXPECT_TRUE(lost.contains("lastKnownSince"));
    EXPECT_EQ(confirm(seen, {}).status, 409U);
    const json::array gaps = server.events("target=Packer&lastKnown=1&gaps=1&order=priority");
    ASSERT_EQ(gaps.size(), 3U);
    EXPECT_EQ(gaps[0].at("id"), seen.at("id"));
    EXPECT_EQ(gaps[1].at("kind"), "gap");
    EXPECT_EQ(gaps[1].at("reason"), "disconnected");
    EXPECT_TRUE(gaps[1].at("to").is_null());

    act(packer, R"([{"do": "clear", "alarm": "jam"}, {"do": "accept"}])");
    ASSERT_TRUE(isTarget("Packer", "good"));
    EXPECT_TRUE(reaches("target=Packer&state=active&lastKnown=1", 0)) << "the import tells the end";
    const auto isGapOver = [&] {
        return !server.events("target=Packer&gaps=1&limit=1").at(0).at("to").is_null();
    };
    EXPECT_TRUE(isGapOver());

    act(packer, R"([{"do": "refuse", "hresult": "0x98110007"}, {"do": "drop"}])");
    ASSERT_TRUE(isTarget("Packer", "lost"));
    EXPECT_FALSE(isGapOver());
    server.send("DELETE", "/api/config/TARGET_SYSTEMS::Packer");
    EXPECT_TRUE(eventually(isGapOver)) << "it does not come back";
}

TEST_F(Operator, SeesHowFarAnImportHasCome) {
    raise(filler, "low");
    ASSERT_TRUE(reaches("kind=alarm&target=Filler", 1));
    act(filler, R"({"do": "pause", "call": "ConfirmationState"})");
    server.send("POST", "/api/commands",
                json::parse(R"([{"command": "ForceReconnect", "writeValue": "Filler"}])"));
    const json::value logged{{"done", 2}, {"of", 3}};  // and not yet the active alarm
    EXPECT_TRUE(eventually([&] {
        const json::object target = targetOf("Filler");
        return target.contains("progress") && target.at("progress") == logged;
    }));
    act(filler, R"([{"do": "resume"}, {"do": "accept"}])");
    EXPECT_TRUE(isTarget("Filler", "good"));
    EXPECT_FALSE(targetOf("Filler").contains("progress"));
}

TEST_F(Operator, FindsCountsAndGroupsWhatTheRowsShow) {
    raise(filler, "low");
    raise(filler, "lower");
    raise(packer, "jam");
    act(filler, R"([{"do": "raise", "class": "{00000001-0000-0000-0000-00000000ABCD}", "event": 1,
                     "alarm": "elsewhere", "source": {"name": "Straße"}, "arguments": [7],
                     "json": "{\"a\": 1}", "timeRaised": "2024-05-01T06:30:00Z"},
                    {"do": "clear", "alarm": "elsewhere"}])");
    ASSERT_TRUE(reaches("state=active", 3));
    ASSERT_TRUE(reaches("state=cleared", 1));
    const auto ask = [&](const std::string& query) {
        return server.get("/api/events?" + query).json();
    };
    const json::value counts = ask("counts=1&limit=0&state=cleared").at("counts");
    EXPECT_EQ(counts, json::parse(R"({"unconfirmed": [0,0,0,4,0], "active": [0,0,0,3,0],
                                      "oldestUnconfirmed": "2024-05-01T06:30:00.0000000Z"})"));
    EXPECT_EQ(ask("counts=1&target=Packer").at("counts").at("active").at(3), 1);

    const json::value groups = ask("group=1&kind=alarm&locale=de-DE&wait=5000&brief=1");
    EXPECT_EQ(groups.at("total"), 3);
    EXPECT_EQ(groups.at("events"), 4);
    std::string shown;
    for (const json::value& group : groups.at("groups").as_array())
        shown += serialize(group.at("target")) + serialize(group.at("sourceName")) +
                 serialize(group.at("count")) + serialize(group.at("active")) +
                 serialize(group.at("newest").at("text")) + "\n";
    EXPECT_THAT(shown, testing::EndsWith("\"Filler\"\"Straße\"10\"Stand 7 niedrig\"\n"));
    EXPECT_THAT(shown, testing::HasSubstr("\"Filler\"\"Tank\"22\"Stand 15 niedrig\"\n"));
    EXPECT_EQ(ask("group=1&limit=1&offset=2&text=STRASSE").at("groups").as_array().size(), 0U);

    for (const char* found : {"text=stRASSe", "text=ABcd&target=Filler&state=cleared",
                              "text=stand+7&locale=de-DE&wait=5000",
                              "text=m%C3%A4CHINE&locale=en-US&wait=5000&state=cleared",
                              "text=BEH%C3%84LTER&locale=de-DE&wait=5000&target=Packer"})
        EXPECT_EQ(ask(found).at("total"), found[5] == 'm' ? 0 : 1) << found;
    const auto first = [&](const std::string& order) {
        const json::value row =
            ask("locale=en-US&wait=5000&kind=alarm&limit=1&order=" + order).at("events").at(0);
        return std::string(row.at("parameters").at("targetName").as_string()) + "/" +
               std::string(row.at("text").as_string());
    };
    EXPECT_EQ(first("-time"), "Filler/Level 7 low");
    EXPECT_EQ(first("-priority"), "Filler/Level 7 low");
    EXPECT_EQ(first("-target"), "Packer/Level 15 low");
    EXPECT_EQ(first("-name"), "Filler/Level 7 low");
    EXPECT_NE(first("name"), "Filler/Level 7 low");
    EXPECT_EQ(server.events("order=-target").at(0).at("kind"), "message");

    const json::object whole = server.events("state=cleared").at(0).at("parameters").as_object();
    const json::object brief =
        server.events("state=cleared&brief=1").at(0).at("parameters").as_object();
    for (const char* hidden : {"jsonAttribute", "types", "data"})
        EXPECT_TRUE(whole.contains(hidden) && !brief.contains(hidden)) << hidden;
    EXPECT_EQ(brief.at("sourceName"), "Straße");
}

TEST_F(Operator, SeesHowAlarmsBehave) {
    for (int i = 0; i < 3; ++i)
        act(filler,
            R"([{"do": "raise", "class": "{00000001-0000-0000-0000-00000000ABCD}", "event": 1,
                         "alarm": "chatter", "source": {"name": "Tank"}, "arguments": [1]},
                        {"do": "clear", "alarm": "chatter"}])");
    raise(packer, "jam");  // which was raised long ago by its own clock
    const auto alarms = [&] {
        return server.get("/api/statistics").json().at("all").at("peak").at("alarms").as_int64();
    };
    ASSERT_TRUE(eventually([&] { return alarms() == 4; }));
    act(packer, R"({"do": "databaseChanged", "reason": 0})");
    ASSERT_TRUE(eventually(
        [&] { return server.hasMetric("hmi_target_imports_total{target=\"Packer\"} 2"); }));
    const json::value told = server.get("/api/statistics?minutes=20&locale=de-DE").json();
    EXPECT_EQ(told.at("flood"), false);
    EXPECT_EQ(told.at("all").at("rate").as_array().size(), 2U);
    EXPECT_EQ(told.at("all").at("rate").at(1).at("alarms"), 4);
    EXPECT_EQ(told.at("all").at("peak").at("alarms"), 4);
    const json::value& chatter = told.at("all").at("chattering").at(0);
    EXPECT_EQ(chatter.at("text"), "Stand 1 niedrig");
    EXPECT_EQ(chatter.at("sourceName"), "Tank");
    EXPECT_EQ(chatter.at("perMinute"), 3);
    EXPECT_EQ(told.at("targets").at(0).at("name"), "Filler");
    EXPECT_EQ(told.at("targets").at(0).at("counts").at("unconfirmed").at(3), 1);
    EXPECT_EQ(told.at("targets").at(2).at("standing").at(0).at("target"), "Packer");
    EXPECT_EQ(server.get("/api/statistics?minutes=0").status, 400U);
}

TEST_F(Operator, TakesTheListAwayAsATable) {
    act(filler, R"({"do": "raise", "class": "{00000001-0000-0000-0000-00000000ABCD}", "event": 1,
                    "alarm": "odd", "source": {"name": "=1+1;\"x\""}, "arguments": ["a,b"],
                    "timeRaised": "2024-05-01T07:00:00.5Z"})");
    ASSERT_TRUE(reaches("kind=alarm", 1));
    const std::string all = "/api/events.csv?bom=1&target=Filler&locale=de-DE";
    const std::string table = server.get(all).body;
    EXPECT_THAT(table, testing::StartsWith("\xEF\xBB\xBFkind,id,target,severity,state,"));
    EXPECT_THAT(
        table,
        testing::HasSubstr(
            ",Filler,3,active,pending,2024-05-01T07:00:00.5000000Z,,,2024-05-01T07:00:00.5000000Z,"
            "\"Stand a,b niedrig\",Machine,\"'=1+1;\"\"x\"\"\",,"));
    EXPECT_THAT(table, testing::HasSubstr("\r\nmessage,m"));
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 3);
    act(filler, R"({"do": "message", "class": "{00000001-0000-0000-0000-00000000ABCD}",
                    "event": 2, "count": 90})");
    ASSERT_TRUE(reaches("kind=message&target=Filler", 91));
    const std::string many = server.get("/api/events.csv?kind=message&target=Filler").body;
    EXPECT_EQ(std::count(many.begin(), many.end(), '\n'), 92) << "no smaller limit than the list's";
    EXPECT_EQ(server.get("/api/events.csv?group=1").status, 400U);
}

TEST_F(Operator, OrdersAndFollows) {
    EXPECT_EQ(server.get("/api/stream?types=nonsense").status / 100, 4U);
    StreamClient all(server.port(), {}, "/api/stream?brief=0");
    StreamClient few(server.port(), {}, "/api/stream?types=message&brief=1");
    raise(filler, "low");
    act(filler, R"({"do": "message", "class": "{00000001-0000-0000-0000-00000000ABCD}",
                    "event": 2, "arguments": [7]})");
    std::int64_t sequence = 0;
    std::string types;
    while (types.find("message alive") == std::string::npos) {
        const auto line = all.next();
        ASSERT_TRUE(line) << types;
        EXPECT_TRUE(sequence == 0 || line->at("seq") == sequence + 1) << serialize(*line);
        sequence = line->at("seq").as_int64();
        if (line->at("type") == "message") {
            EXPECT_TRUE(line->at("event").at("parameters").as_object().contains("data"));
        }
        if (line->at("type") == "message" || line->at("type") == "alive")
            types.append(line->at("type").as_string()).append(" ");
    }
    std::optional<json::value> line = few.next();
    ASSERT_TRUE(line);
    while (line->at("type") == "alive")
        line = few.next();
    EXPECT_EQ(line->at("type"), "message");
    EXPECT_FALSE(line->at("event").at("parameters").as_object().contains("data"));

    EXPECT_EQ(server.events("target=Filler").at(0).at("kind"), "message");
    EXPECT_EQ(server.events("target=Filler&order=priority").at(0).at("kind"), "alarm");
    EXPECT_EQ(countOf("target=Filler&from=2024-05-01T07:00:00.5Z&to=2024-05-01T07:00:00.5Z"), 1U);
    EXPECT_EQ(countOf("target=Filler&to=2024-05-01T06:59:59Z"), 1U);
    for (const char* refused :
         {"order=age", "order=-", "group=2", "from=yesterday", "to=2024-02-30T00:00:00Z", "gaps=2"})
        EXPECT_EQ(server.get(std::string("/api/events?") + refused).status, 400U) << refused;
}

}  // namespace
