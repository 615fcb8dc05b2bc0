#include <boost/algorithm/string/replace.hpp>
#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include "simulator/Control.h"
#include "support/Simulation.h"

namespace json = boost::json;
using bridge_test::fillerNetId;

namespace {

/// ' stands for ", CLASS for the event class, #1 for its event 1.
std::string inFull(std::string text) {
    boost::replace_all(text, "#", "'class': 'CLASS', 'event': ");
    boost::replace_all(text, "CLASS", bridge_test::eventClass);
    boost::replace_all(text, "'", "\"");
    return text;
}

class ControlTest : public testing::Test {
protected:
    bridge_test::Simulation simulation;

    /// The error, or nothing when it was accepted.
    static std::string load(const std::string& plant) {
        char* answer = nullptr;
        const int result = ZrSimulatorLoadPlant(inFull(plant).c_str(), &answer);
        return take(result, answer);
    }
    static std::string apply(const std::string& actions) {
        char* answer = nullptr;
        const int result = ZrSimulatorApply(fillerNetId, inFull(actions).c_str(), &answer);
        return take(result, answer);
    }

private:
    static std::string take(int result, char* answer) {
        const json::object body = json::parse(answer).as_object();
        ZrSimulatorFree(answer);
        EXPECT_EQ(result, body.empty() ? 200 : 400);
        return body.empty() ? "" : body.at("error").as_string().c_str();
    }
};

TEST_F(ControlTest, RefusesAPlantWithThePathOfItsFirstError) {
    // Each text stands in place of one part of a plant that is right otherwise.
    const std::string plant =
        "{'runtimes': {'5.10.20.30.1.1': {'eventClasses': {'CLASS': {'name': {'1033': 'Pump'},"
        " 'events': {'1': {'kind': 'alarm', EVENT}, '3': {'kind': 'message'}}}},"
        " 'logged': [{'class': 'CLASS', 'timeRaised': '2024-05-01T00:00:00Z', LOGGED}],"
        " 'timeline': [{'do': 'resume'}, {STEP}], RUNTIME}}, PLANT}";
    const std::pair<const char*, const char*> parts[] = {{"EVENT", "'confirm': true"},
                                                         {"LOGGED", "'event': 1"},
                                                         {"STEP", "'do': 'drop'"},
                                                         {"RUNTIME", "'repeat': false"},
                                                         {"PLANT", "'localNetId': null"}};
    const struct {
        const char* part;
        const char* text;
        const char* path;  ///< null: accepted
    } cases[] = {
        {"PLANT", "'localNetId': '1.1.1.1.1.255'", nullptr},
        {"PLANT", "'localNetId': '1.1.1.1.1.256'", "localNetId"},
        {"PLANT", "'plant': 1", "plant"},
        {"PLANT", "'localNetId': null}\n}", "line 2"},
        {"RUNTIME", "'repeat': true", "~repeat"},  // it would take no time
        {"RUNTIME", "'sources': {'Tank': {'en': 'Tank'}}", "~sources.Tank.en"},
        {"RUNTIME", "'sources': {'Tank': {'1033': 'a', '01033': 'b'}}", "~sources.Tank.01033"},
        {"EVENT", "'severity': 5", "~eventClasses.CLASS.events.1.severity"},
        {"EVENT", "'details': [{'text': {}}]", "~eventClasses.CLASS.events.1.details[0]"},
        {"EVENT", "'confirm': true}, '4294967296': {'kind': 'alarm'",
         "~eventClasses.CLASS.events.4294967296"},
        {"LOGGED", "'event': 9", "~logged[0].event"},
        {"LOGGED", "'event': 1, 'timeCleared': '2024-02-29T23:59:59Z'", nullptr},
        {"LOGGED", "'event': 1, 'timeCleared': '2023-02-29T23:59:59Z'", "~logged[0].timeCleared"},
        {"LOGGED", "'event': 1, 'arguments': [1, [2]]", "~logged[0].arguments[1]"},
        {"STEP", "'after': 1", "~timeline[1]"},
        {"STEP", "'do': 'drop', 'call': 'Connect'", "~timeline[1].call"},
        {"STEP", "'do': 'message', #1", "~timeline[1].event"},
        {"STEP", "'do': 'message', #3, 'count': 0", "~timeline[1].count"},
        {"STEP", "'do': 'fail', 'call': 'Fly', 'hresult': '0x80004005'", "~timeline[1].call"},
        {"STEP", "'do': 'refuse', 'hresult': '0x00000000'", "~timeline[1].hresult"},
        {"STEP", "'do': 'fail', 'call': 'Notification', 'kind': 'exception'", "~timeline[1].kind"},
        {"STEP", "'do': 'fail', 'call': '*', 'meanwhile': [{'do': 'resume'}, {'do': 'fly'}]",
         "~timeline[1].meanwhile[1].do"},
    };
    for (const auto& [part, text, path] : cases) {
        std::string changed = boost::replace_first_copy(plant, part, text);
        for (const auto& [other, usual] : parts)
            boost::replace_first(changed, other, usual);
        std::string error = load(changed);
        boost::replace_first(error, "runtimes.5.10.20.30.1.1.", "~");
        if (path)
            EXPECT_TRUE(error.starts_with(inFull(path) + ": ")) << text << '\n' << error;
        else
            EXPECT_EQ(error, "");
        EXPECT_EQ(simulation.status().at("connected"), false);  // there is a plant all the time
    }
}

TEST_F(ControlTest, ChangesNothingWhenAnyActionIsWrong) {
    const std::pair<std::string, const char*> cases[] = {
        {"{'do': 'clear', 'alarm': 'B'}", "[1].alarm: never raised"},
        {"{'do': 'clear', 'alarm': 'A-2'}", "[1].alarm: never raised"},
        {"{'do': 'explode'}", "[1].do: not an action"},
        {"{'do': 'resume', 'after': 1}", "[1].after: only for the steps of a timeline"},
        {"7", "[1]: not an object"}};
    for (const auto& [second, error] : cases) {
        EXPECT_EQ(apply("[{'do': 'raise', 'alarm': 'A', #1, 'count': 2}, " + second + "]"), error);
        EXPECT_EQ(simulation.status().at("logged").to_number<int>(), 0);
    }
    for (const char* netId : {"5.10.20.30.1.2", "5.10.20.30.1", "nonsense"})
        EXPECT_EQ(ZrSimulatorApply(netId, R"({"do": "resume"})", nullptr), 404) << netId;
    EXPECT_EQ(ZrSimulatorStatus(nullptr, nullptr), 404);
    EXPECT_EQ(ZrSimulatorLoadPlant(nullptr, nullptr), 400);
    EXPECT_EQ(ZrSimulatorApply(fillerNetId, nullptr, nullptr), 400);
}

}  // namespace
