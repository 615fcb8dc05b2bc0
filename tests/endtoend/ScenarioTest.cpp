/// The real extension and simulated runtimes, seen through the server.
#include <filesystem>
#include <fstream>
#include <future>
#include <set>
#include <vector>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include "endtoend/ServerFixture.h"

namespace json = boost::json;

namespace {

constexpr const char* eventClass = "{00000001-0000-0000-0000-00000000ABCD}";
constexpr const char* filler = "5.10.20.30.1.1";
constexpr const char* packer = "5.10.20.31.1.1";

json::object runtime(const char* history) {
    json::object events{{"1",
                         {{"kind", "alarm"},
                          {"severity", 3},
                          {"confirm", true},
                          {"text", {{"1033", "Level {0} low"}, {"1031", "Stand {0} niedrig"}}},
                          {"causeRemedy", json::array{{{"id", "1"},
                                                       {"cause", {{"1033", "Leak"}}},
                                                       {"remedy", {{"1033", "Seal"}}}}}}}},
                        {"2", {{"kind", "message"}, {"text", {{"1033", "Batch {0}"}}}}}};
    return {{"eventClasses", {{eventClass, {{"name", {{"1033", "Machine"}}}, {"events", events}}}}},
            {"sources", {{"Tank", {{"1031", "Behälter"}}}}},
            {"logged", json::array{{{"class", eventClass},
                                    {"event", 2},
                                    {"timeRaised", "2024-05-01T06:00:00.1234567Z"},
                                    {"arguments", {history}}}}}};
}

json::object raise(const char* alarm, int level) {
    return {{"do", "raise"},
            {"alarm", alarm},
            {"class", eventClass},
            {"event", 1},
            {"source", {{"name", "Tank"}}},
            {"arguments", {level}}};
}

class Scenario : public testing::Test {
protected:
    static json::value config() {
        return {{"TIMEOUT", "PT2S"},
                {"LIMIT_EVENT_COUNT", 100},
                {"PRELOAD_TRANSLATIONS", false},
                {"TARGET_SYSTEMS",
                 {{"Filler", {{"ADDRESS", filler}, {"ENABLED", true}}},
                  {"Packer", {{"ADDRESS", packer}, {"ENABLED", true}}},
                  {"Nowhere", {{"ADDRESS", "5.10.20.99.1.1"}, {"ENABLED", true}}}}}};
    }

    static json::value plant() {
        return {{"localNetId", "5.10.20.1.1.1"},
                {"runtimes", {{filler, runtime("F1")}, {packer, runtime("P1")}}}};
    }

    void act(const char* netId, const json::value& action) {
        const HttpAnswer answer = server.post(std::string("/sim/") + netId, action);
        ASSERT_EQ(answer.status, 200U) << answer.body;
    }

    json::value simulated(const char* netId) {
        return server.get(std::string("/sim/") + netId).json();
    }

    json::value diagnostics(const char* target) {
        const json::value answers =
            server.post("/api/commands", json::array{{{"command", "Diagnostics"}}}).json();
        return answers.at(0).at("readValue").at("TARGET_SYSTEMS").at(target);
    }

    bool hasState(const char* target, const char* state) {
        return diagnostics(target).at("connectionState") == state;
    }

    /// The stream's next line of this type; lines of the log pass by.
    json::value next(StreamClient& stream, const char* type) {
        while (const auto line = stream.next()) {
            if (line->at("type") == type)
                return *line;
            EXPECT_EQ(line->at("type"), "log") << serialize(*line);
        }
        ADD_FAILURE() << "no line " << type;
        return {};
    }

    std::size_t countOf(const char* query) { return server.events(query).size(); }

    std::size_t logged(std::string_view name) {
        std::size_t count = 0;
        const json::value log = server.get("/api/log").json();
        for (const json::value& entry : log.at("entries").as_array())
            count += entry.at("name").as_string() == name ? 1U : 0U;
        return count;
    }

    ServerFixture server{EXTENSION_FILE, config(), plant()};
};

TEST_F(Scenario, AnAlarmIsRaisedConfirmedAndCleared) {
    EXPECT_EQ(logged("TARGET_SYSTEM_CONNECTED"), 2U);
    EXPECT_EQ(countOf("kind=message"), 2U) << "the logs of both runtimes were imported";
    StreamClient stream(server.port());

    act(filler, raise("low", 15));
    const json::value raised = next(stream, "raised").at("event");
    const std::string path = "/api/events/" + serialize(raised.at("id"));
    EXPECT_EQ(raised.at("parameters").at("targetName"), "Filler");
    EXPECT_EQ(countOf("target=Filler&state=active&severity=3"), 1U);
    EXPECT_EQ(countOf("target=Packer&state=active"), 0U);
    EXPECT_EQ(logged("NEW_ALARM_RAISED"), 1U);

    const json::value german = server.get(path + "?locale=de-DE").json();
    EXPECT_EQ(german.at("text"), "Stand 15 niedrig");
    EXPECT_EQ(german.at("localizedSourceName"), "Behälter");
    const json::value english = server.get(path + "?locale=en-US").json();
    EXPECT_EQ(english.at("causeRemedy"),
              (json::array{{{"id", "1"}, {"cause", "Leak"}, {"remedy", "Seal"}}}));
    EXPECT_EQ(countOf("locale=de-DE&text=STAND%2015"), 1U);
    EXPECT_EQ(countOf("text=STAND+15"), 0U) << "without a locale there is no such text";

    EXPECT_EQ(server.post(path + "/confirm", nullptr).json().at("result"), 0);
    EXPECT_EQ(next(stream, "updated").at("event").at("confirmationState"), 3);
    EXPECT_EQ(simulated(filler).at("alarms").at("low").at("confirmed"), true);
    EXPECT_EQ(countOf("state=unconfirmed"), 0U);
    EXPECT_EQ(logged("CALL_CONFIRM"), 1U);

    act(filler, {{"do", "clear"}, {"alarm", "low"}});
    EXPECT_EQ(next(stream, "removed").at("event").at("active"), false);
    EXPECT_EQ(countOf("state=cleared&target=Filler"), 1U) << "it stays as history";
    EXPECT_NE(server.post(path + "/confirm", nullptr).json().at("result"), 0);

    act(filler, {{"do", "message"}, {"class", eventClass}, {"event", 2}, {"arguments", {"F2"}}});
    EXPECT_EQ(next(stream, "message").at("event").at("kind"), "message");
    EXPECT_EQ(server.events("kind=message&limit=1&locale=en-US")[0].at("text"), "Batch F2");
    EXPECT_EQ(server.stop(), 0);
}

TEST_F(Scenario, OneLostRuntimeLeavesTheOthersRunning) {
    EXPECT_TRUE(hasState("Nowhere", "Not Connected"));
    act(packer, raise("jam", 1));
    ASSERT_TRUE(eventually([&] { return countOf("target=Packer&state=active") == 1; }));

    act(packer, json::array{{{"do", "refuse"}, {"hresult", "0x98110007"}}, {{"do", "drop"}}});
    ASSERT_TRUE(eventually([&] { return hasState("Packer", "Not Connected"); }));
    ASSERT_TRUE(eventually([&] { return countOf("target=Packer&kind=alarm") == 0; }))
        << "nobody can say whether they still hold";
    ASSERT_TRUE(
        eventually([&] { return diagnostics("Packer").as_object().contains("connectError"); }));
    act(filler, raise("low", 5));
    ASSERT_TRUE(eventually([&] { return countOf("target=Filler&state=active") == 1; }));
    EXPECT_TRUE(hasState("Filler", "Good"));
    EXPECT_THAT(
        server.get("/metrics").body,
        testing::HasSubstr("hmi_target_state{target=\"Packer\",state=\"Not Connected\"} 1\n"));

    act(packer, {{"do", "accept"}});
    ASSERT_TRUE(eventually([&] { return hasState("Packer", "Good"); }));
    EXPECT_TRUE(eventually([&] { return countOf("target=Packer&state=active") == 1; }))
        << "it was active all the time";
}

TEST_F(Scenario, TargetSystemsComeAndGoWhileTheServerRuns) {
    EXPECT_EQ(server.erase("/api/config/TARGET_SYSTEMS::Packer").json(),
              (json::value{{"result", 0}}));
    EXPECT_TRUE(eventually([&] { return countOf("target=Packer") == 0; }));
    EXPECT_EQ(simulated(packer).at("connected"), false);
    EXPECT_EQ(
        server.put("/api/config/TARGET_SYSTEMS::Second", {{"ADDRESS", packer}, {"ENABLED", true}})
            .json(),
        (json::value{{"result", 0}}));
    EXPECT_TRUE(eventually([&] { return countOf("target=Second&kind=message") == 1; }));
    const HttpAnswer refused = server.put("/api/config/TARGET_SYSTEMS::Third", 5);
    EXPECT_EQ(refused.status / 100, 4U);
    EXPECT_EQ(refused.json().at("result"), 269);
    EXPECT_FALSE(
        json::parse(server.configFile()).at("TARGET_SYSTEMS").as_object().contains("Third"));
}

TEST_F(Scenario, RequestsThatHangInARuntimeHoldUpNoOthers) {
    act(filler, {{"do", "pause"}, {"call", "GetEventText"}});
    std::vector<std::future<HttpAnswer>> hanging;
    for (int i = 0; i < 40; ++i)
        hanging.push_back(std::async(std::launch::async, [this] {
            return server.get("/api/events?target=Filler&locale=en-US");
        }));
    ASSERT_TRUE(eventually([&] {
        const json::value calls = simulated(filler).at("calls");
        const json::value* const waiting = calls.as_object().if_contains("GetEventText");
        return waiting && waiting->as_int64() > 0;
    }));
    act(packer, raise("jam", 1));
    EXPECT_TRUE(eventually([&] { return countOf("target=Packer&state=active") == 1; }));
    act(filler, {{"do", "resume"}});
    for (auto& answer : hanging)
        EXPECT_EQ(answer.get().status, 200U);
}

TEST_F(Scenario, BadActionsChangeNothing) {
    const std::string before = server.get(std::string("/sim/") + filler).body;
    for (const char* action : {"", "{}", R"({"do": "dance"})", R"([{"do": "drop"}, 5])",
                               R"({"do": "raise", "alarm": "a"})"})
        EXPECT_EQ(sendRequest(server.port(), "POST", std::string("/sim/") + filler, action).status,
                  400U)
            << action;
    EXPECT_EQ(server.post("/sim/9.9.9.9.9.9", {{"do", "drop"}}).status, 404U);
    EXPECT_EQ(server.get(std::string("/sim/") + filler).body, before);
}

json::value readDemo(const char* name) {
    std::ifstream stream(std::filesystem::path(DEMO_DIRECTORY) / name, std::ios::binary);
    return json::parse(std::string(std::istreambuf_iterator<char>(stream), {}));
}

TEST(Demo, HasItsTextsInEachOfItsLanguages) {
    json::value plant = readDemo("plant.json");
    std::size_t history = 0;
    // One of each event now, instead of in the course of the demonstration.
    for (auto& [netId, part] : plant.at("runtimes").as_object()) {
        json::object& runtime = part.as_object();
        history += runtime.at("logged").as_array().size();
        json::array once;
        std::set<std::string> seen;
        for (const json::value& step : runtime.at("timeline").as_array()) {
            json::object action = step.as_object();
            action.erase("after");
            if (action.contains("event") &&
                seen.insert(serialize(action.at("class")) + serialize(action.at("event"))).second)
                once.push_back(action);
        }
        history += once.size();
        runtime["timeline"] = once;
        runtime["repeat"] = false;
    }
    const ServerFixture server(EXTENSION_FILE, readDemo("config.json"), plant);
    ASSERT_TRUE(eventually([&] { return server.events().size() == history; }));
    const json::array english = server.events("limit=1000&locale=en-US");
    const json::array german = server.events("limit=1000&locale=de-DE");
    const json::array russian = server.events("limit=1000&locale=ru-RU");
    for (std::size_t i = 0; i < history; ++i) {
        const std::string text(english[i].at("text").as_string());
        EXPECT_THAT(text, testing::Not(testing::HasSubstr("{"))) << "a missing argument";
        EXPECT_NE(text, german[i].at("text").as_string());
        EXPECT_NE(text, russian[i].at("text").as_string());
        EXPECT_NE(german[i].at("text"), russian[i].at("text"));
        EXPECT_TRUE(english[i].as_object().contains("localizedSourceName")) << text;
    }
}

}  // namespace
