/// The real extension and simulated runtimes, seen through the server.
#include <cstdlib>
#include <future>
#include <set>
#include <vector>

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include "endtoend/PlantScenario.h"

namespace json = boost::json;

namespace {

using Scenario = PlantScenario;

const json::value success{{"result", 0}};

TEST_F(Scenario, AnAlarmIsRaisedConfirmedAndCleared) {
    // A runtime is asked whether it is connected when its import has been handed over.
    for (const std::string& netId : {filler, packer})
        ASSERT_TRUE(eventually(
            [&] { return simulated(netId).at("calls").at("IsConnected") != json::value(0); }));
    EXPECT_EQ(countOf("kind=message"), 2U) << "the logs of both runtimes were imported";
    StreamClient stream(server.port());

    raise(filler, "low");
    const json::value raised = next(stream, "raised");
    const std::string path = "/api/events/" + serialize(raised.at("id"));
    EXPECT_EQ(raised.at("parameters").at("targetName"), "Filler");
    EXPECT_EQ(raised.at("timeRaised"), "2024-05-01T07:00:00.5000000Z");
    EXPECT_EQ(raised.at("active"), true);
    EXPECT_EQ(countOf("target=Filler&state=unconfirmed&severity=3"), 1U);
    EXPECT_TRUE(isLogged("NEW_ALARM_RAISED"));

    const json::value german = server.get(path + "?locale=de-DE").json();
    EXPECT_EQ(german.at("text"), "Stand 15 niedrig");
    EXPECT_EQ(german.at("localizedSourceName"), "Behälter");
    EXPECT_EQ(server.get(path + "?locale=en-US").json().at("causeRemedy"),
              (json::array{{{"id", "1"}, {"cause", "Leak"}, {"remedy", "Seal"}}}));
    EXPECT_EQ(countOf("locale=de-DE&text=STAND%2015"), 1U);
    EXPECT_EQ(countOf("text=STAND+15"), 0U) << "without a locale there is no such text";
    EXPECT_EQ(server.get(path + "?locale=xx-nope").json().at("result"), 258);
    EXPECT_FALSE(server.events("locale=xx-nope")[0].as_object().contains("text"));

    EXPECT_EQ(server.send("POST", path + "/confirm").json().at("result"), 0);
    EXPECT_EQ(next(stream, "updated").at("confirmationState"), 3);
    EXPECT_EQ(simulated(filler).at("alarms").at("low").at("confirmed"), true);
    EXPECT_TRUE(isLogged("CALL_CONFIRM"));

    act(filler, R"({"do": "clear", "alarm": "low"})");
    EXPECT_EQ(next(stream, "removed").at("active"), false);
    EXPECT_EQ(countOf("state=cleared&target=Filler"), 1U) << "it stays as history";
    EXPECT_NE(server.send("POST", path + "/confirm").json().at("result"), 0);

    act(filler, R"({"do": "message", "class": "{00000001-0000-0000-0000-00000000ABCD}",
                    "event": 2, "arguments": ["F2"]})");
    EXPECT_EQ(next(stream, "message").at("kind"), "message");
    EXPECT_EQ(server.events("kind=message&limit=1&locale=en-US")[0].at("text"), "Batch F2");
    EXPECT_EQ(server.events("kind=message&offset=1&limit=1").size(), 1U);
    EXPECT_EQ(server.get("/api/events?limit=1").json().at("total"), 4);
    const json::value log = server.get("/api/log?since=1&limit=2").json();
    EXPECT_EQ(log.at("entries").as_array().size(), 2U);
    EXPECT_EQ(log.at("next"), 3);
    EXPECT_EQ(server.send("POST", "/sim/" + filler, {{"do", "dance"}}).status, 400U);
    EXPECT_EQ(server.send("POST", "/sim/9.9.9.9.9.9", {{"do", "drop"}}).status, 404U);
    EXPECT_EQ(server.stop(), 0);
}

TEST_F(Scenario, OneLostRuntimeLeavesTheOthersRunning) {
    raise(packer, "jam");
    ASSERT_TRUE(reaches("target=Packer&state=active", 1));

    act(packer, R"([{"do": "refuse", "hresult": "0x98110007"}, {"do": "drop"}])");
    ASSERT_TRUE(eventually([&] { return isPackerIn("Not Connected"); }));
    ASSERT_TRUE(reaches("target=Packer&kind=alarm", 0)) << "nobody can say whether they still hold";
    raise(filler, "low");
    ASSERT_TRUE(reaches("target=Filler&state=active", 1));

    act(packer, R"({"do": "accept"})");
    ASSERT_TRUE(eventually([&] { return isPackerIn("Good"); }));
    EXPECT_TRUE(reaches("target=Packer&state=active", 1)) << "it was active all the time";
}

TEST_F(Scenario, AChangeOfTheConfigurationIsForetold) {
    raise(packer, "jam");
    ASSERT_TRUE(reaches("target=Packer&state=unconfirmed", 1));
    const std::string before = server.configFile();
    const auto foretold = [&](const json::value& change) {
        return server.send("POST", "/api/config/check", change).json();
    };
    const std::string targetPath = "TARGET_SYSTEMS::Packer";
    const auto leaving = [](const char* how) {
        return json::parse(std::string(R"({"accepted": true, "targets": [{"name": "Packer",
            "eventsLeaving": 2, "unconfirmed": 1, "change": ")") +
                           how + "\"}]}");
    };
    EXPECT_EQ(foretold({{"path", targetPath}}), leaving("removed"));
    EXPECT_EQ(foretold({{"path", targetPath + "::ENABLED"}, {"value", false}}),
              leaving("replaced"));
    const json::value same{{"ADDRESS", packer}, {"ENABLED", true}};
    EXPECT_EQ(foretold({{"path", targetPath}, {"value", same}}).at("targets"), json::array());
    EXPECT_EQ(foretold({{"path", "TARGET_SYSTEMS::New"}, {"value", same}}).at("targets").at(0),
              json::parse(R"({"name": "New", "change": "added", "eventsLeaving": 0,
                              "unconfirmed": 0})"));
    for (const json::value& refused : {json::value{{"path", targetPath}, {"value", 5}},
                                       json::value{{"path", targetPath + "::ADDRESS"}},
                                       json::value{{"path", "TARGET_SYSTEMS"}, {"value", nullptr}},
                                       json::value{{"path", "LIMIT_EVENT_COUNT"}, {"value", -1}}}) {
        const json::value answer = foretold(refused);
        EXPECT_EQ(answer.at("accepted"), false) << serialize(refused);
        EXPECT_TRUE(answer.at("error").is_string() && answer.at("targets").as_array().empty());
    }
    EXPECT_EQ(server.send("POST", "/api/config/check", {{"value", 5}}).status, 400U);
    EXPECT_EQ(server.configFile(), before);
    EXPECT_EQ(server.get("/api/config").json(), config());
    EXPECT_EQ(countOf("target=Packer"), 2U) << "nothing has happened";
}

TEST_F(Scenario, TargetSystemsComeAndGoWhileTheServerRuns) {
    const std::string targets = "/api/config/TARGET_SYSTEMS::";
    json::value entry{{"ADDRESS", packer}, {"ENABLED", true}};
    EXPECT_EQ(server.send("DELETE", targets + "Packer").json(), success);
    EXPECT_TRUE(reaches("target=Packer", 0));
    EXPECT_EQ(simulated(packer).at("connected"), false);
    EXPECT_EQ(server.send("PUT", targets + "Second", entry).json(), success);
    EXPECT_TRUE(reaches("target=Second&kind=message", 1));
    EXPECT_EQ(server.send("PUT", targets + "Second::ENABLED", false).json(), success);
    EXPECT_TRUE(eventually([&] { return simulated(packer).at("connected") == false; }));

    const HttpAnswer refused = server.send("PUT", targets + "Third", 5);
    EXPECT_EQ(refused.status / 100, 4U);
    EXPECT_EQ(refused.json().at("result"), 269);
    json::value expected = config();
    entry.at("ENABLED") = false;
    expected.at("TARGET_SYSTEMS").as_object().erase("Packer");
    expected.at("TARGET_SYSTEMS").as_object()["Second"] = entry;
    EXPECT_EQ(server.get("/api/config").json(), expected);
    EXPECT_EQ(json::parse(server.configFile()), expected);
}

#ifndef _WIN32  // where the checker is
TEST_F(Scenario, MetricsAreAsTheirReaderWantsThem) {
    raise(filler, "low");
    ASSERT_TRUE(reaches("state=active", 1));
    const TemporaryDirectory files;
    const std::string metrics = files.write("metrics", server.get("/metrics").body);
    const std::string said = files.path("said").string();
    const int result =
        std::system(("promtool check metrics < " + metrics + " > " + said + " 2>&1").c_str());
    EXPECT_EQ(result, 0) << readFile(said);
}
#endif

/// Longer than what is made at once; packed and plain.
TEST_F(Scenario, ALongListComesWhole) {
    act(filler, R"({"do": "message", "class": "{00000001-0000-0000-0000-00000000ABCD}",
                    "event": 2, "arguments": ["F2"], "count": 3000})");
    ASSERT_TRUE(eventually([&] { return countOf("limit=100000&target=Filler") == 100; }))
        << "as many as the limit lets stay";
    act(packer, R"({"do": "drop"})");
    EXPECT_EQ(server.send("PUT", "/api/config/LIMIT_EVENT_COUNT", 5000).status, 200U);
    EXPECT_EQ(server
                  .send("PUT", "/api/config/TARGET_SYSTEMS::Second",
                        {{"ADDRESS", filler}, {"ENABLED", true}})
                  .status,
              200U);
    ASSERT_TRUE(reaches("limit=100000&target=Second", 3001));
    const std::string plain = server.get("/api/events?limit=100000&target=Second").body;
    const json::value list = json::parse(plain);
    std::set<std::string> ids;
    for (const json::value& event : list.at("events").as_array())
        ids.insert(serialize(event.at("id")));
    EXPECT_EQ(ids.size(), 3001U);
    EXPECT_EQ(unpacked(exchange(server.port(),
                                "GET /api/events?limit=100000&target=Second HTTP/1.1\r\n"
                                "Host: localhost\r\nAccept-Encoding: gzip\r\n"
                                "Connection: close\r\n\r\n")),
              plain);
    const std::string old = exchange(server.port(),
                                     "GET /api/events?limit=100000&target=Second HTTP/1.0\r\n"
                                     "Host: localhost\r\n\r\n");
    EXPECT_EQ(old.substr(old.find("\r\n\r\n") + 4), plain) << "ends with the connection";
    const json::value log = server.get("/api/log").json();
    EXPECT_GT(log.at("entries").as_array().size(), 2000U) << "what the first one forgot";
}

TEST_F(Scenario, AStreamClientThatDoesNotReadIsDroppedAlone) {
    StreamClient idle(server.port());
    StreamClient reader(server.port());
    const std::string message = R"({"do": "message", "event": 2, "arguments": [")" +
                                std::string(600'000, 'x') +
                                R"("], "class": "{00000001-0000-0000-0000-00000000ABCD}"})";
    const auto isDropped = [&] { return server.hasMetric("hmi_stream_slow_clients_total 1"); };
    for (int sent = 0; sent < 200 && !isDropped(); ++sent) {
        act(packer, message);
        next(reader, "message");
    }
    EXPECT_TRUE(isDropped());
    act(packer, message);
    next(reader, "message");
}

/// Messages of the filler that differ in their texts.
json::array batches(int count) {
    json::array actions;
    for (int number = 0; number < count; ++number)
        actions.push_back({{"do", "message"},
                           {"class", "{00000001-0000-0000-0000-00000000ABCD}"},
                           {"event", 2},
                           {"arguments", {std::to_string(number)}}});
    return actions;
}

TEST_F(Scenario, AListComesBeforeItsTextsAndTheStreamTellsWhenToAskAgain) {
    act(filler, serialize(batches(40)));
    ASSERT_TRUE(reaches("target=Filler", 41));
    act(filler, R"({"do": "pause", "call": "GetEventText"})");
    StreamClient stream(server.port());
    const auto list = [&](const std::string& query) {
        return server.get("/api/events?target=Filler&locale=en-US" + query).json();
    };
    EXPECT_EQ(list("&wait=0").at("textsPending"), 41);
    EXPECT_EQ(list("&wait=0&text=batch+7").at("textsPending"), 41) << "any of them might match";
    EXPECT_EQ(list("&wait=0&group=1&limit=1").at("textsPending"), 1);
    EXPECT_EQ(server.get("/api/events?target=Packer&locale=en-US").json().at("textsPending"), 0);
    act(filler, R"({"do": "resume"})");
    while (list("&wait=0").at("textsPending") != 0) {
        std::optional<json::value> line = stream.next();
        while (line && line->at("type") != "texts")
            line = stream.next();
        ASSERT_TRUE(line) << "nobody tells of the texts that have come";
    }
    EXPECT_EQ(list("&text=batch+7").at("total"), 1);
    EXPECT_EQ(list("&limit=1&wait=0").at("events").at(0).at("text"), "Batch 39");
    EXPECT_EQ(server.get("/api/events?locale=en-US&wait=soon").status, 400U);
}

TEST_F(Scenario, CallsThatHangInARuntimeHoldUpNoOthers) {
    raise(filler, "low");
    raise(packer, "jam");
    ASSERT_TRUE(reaches("target=Filler&state=active", 1) &&
                reaches("target=Packer&state=active", 1));
    const auto idOf = [&](const char* target) {
        return server.events(std::string("kind=alarm&target=") + target).at(0).at("id");
    };
    const auto many = [&](std::initializer_list<json::value> ids) {
        json::array events;
        for (const json::value& id : ids)
            events.push_back(json::object{{"id", id}});
        return server.send("POST", "/api/confirmations", json::object{{"events", events}});
    };
    const json::value hanging = idOf("Filler");
    const json::value jam = idOf("Packer");
    const std::string hangs = "/api/events/" + serialize(hanging) + "/confirm";
    act(filler, R"([{"do": "pause", "call": "Confirm"}, {"do": "pause", "call": "GetEventText"}])");
    std::vector<std::future<HttpAnswer>> waiting;
    for (int i = 0; i < 40; ++i) {
        waiting.push_back(std::async(std::launch::async, [&, i] {
            if (i % 4 == 0)
                return many({hanging, 999'999});
            if (i % 4 == 1)
                return server.get("/api/events?locale=en-US&group=1&wait=5000");
            return i % 4 == 2 ? server.send("POST", hangs) : server.get("/api/events?locale=en-US");
        }));
    }
    const auto isMetric = [&](const char* line) {
        return eventually([&] { return server.hasMetric(line); });
    };
    ASSERT_TRUE(isMetric("hmi_lane_running{lane=\"confirmations\"} 2"));
    ASSERT_TRUE(isMetric("hmi_lane_waiting{lane=\"confirmations\"} 18"));
    EXPECT_TRUE(isMetric("hmi_lane_running{lane=\"long_localized\"} 4"));
    auto abandoned = beginRequest(server.port(), "POST", hangs);
    ASSERT_TRUE(isMetric("hmi_lane_waiting{lane=\"confirmations\"} 19"));
    abandoned.reset();

    EXPECT_EQ(many({jam, 999'999}).json().at(0).at("result"), 0)
        << "what many wait for holds up nobody";
    EXPECT_EQ(
        server.send("POST", "/api/commands", json::array{{{"command", "Diagnostics"}}}).status,
        200U);
    EXPECT_EQ(server.events("target=Packer&kind=message&locale=en-US")[0].at("text"), "Batch F1");
    EXPECT_EQ(server.send("DELETE", "/api/config/TARGET_SYSTEMS::Nowhere").json(), success);
    EXPECT_TRUE(server.hasMetric("hmi_lane_running{lane=\"confirmations\"} 2"))
        << "they still hang";
    act(filler, R"({"do": "resume"})");
    for (auto& answer : waiting)
        EXPECT_EQ(answer.get().status, 200U);
    EXPECT_TRUE(isMetric("hmi_http_abandoned_requests_total 1"));
}

json::value readDemo(const char* name) {
    return json::parse(readFile(std::filesystem::path(DEMO_DIRECTORY) / name));
}

TEST(Demo, HasItsTextsInEachOfItsLanguages) {
    json::value plant = readDemo("plant.json");
    std::size_t history = 0;
    // One of each event now, instead of in the course of the demonstration.
    for (auto& [netId, runtime] : plant.at("runtimes").as_object()) {
        json::array once;
        std::set<std::string> seen;
        for (json::value& action : runtime.at("timeline").as_array()) {
            action.as_object().erase("after");
            if (action.as_object().contains("event") &&
                seen.insert(serialize(action.at("class")) + serialize(action.at("event"))).second)
                once.push_back(action);
        }
        history += runtime.at("logged").as_array().size() + once.size();
        runtime.as_object()["timeline"] = once;
        runtime.as_object()["repeat"] = false;
    }
    const ServerFixture server(EXTENSION_FILE, readDemo("config.json"), plant);
    ASSERT_TRUE(eventually([&] { return server.events().size() == history; }));
    std::vector<json::array> lists;
    for (const char* locale : {"en-US", "de-DE", "ru-RU"})
        lists.push_back(server.events(std::string("limit=1000&locale=") + locale));
    for (std::size_t i = 0; i < history; ++i) {
        std::set<std::string> texts;
        for (const json::array& list : lists)
            texts.emplace(list[i].at("text").as_string());
        EXPECT_EQ(texts.size(), lists.size()) << *texts.begin() << " is not translated";
        EXPECT_THAT(texts, testing::Not(testing::Contains(testing::HasSubstr("{"))));
        EXPECT_TRUE(lists[0][i].as_object().contains("localizedSourceName")) << *texts.begin();
    }
}

}  // namespace
