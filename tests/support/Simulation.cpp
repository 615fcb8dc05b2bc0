#include "support/Simulation.h"

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include "simulator/Control.h"

namespace bridge_test {

namespace {

std::string runtime(const std::string& netId, const std::string& log, bool numbered) {
    return "\"" + netId + R"(": {"eventClasses": {")" + eventClass +
           R"(": {"name": {"1033": "Machine", "1031": "Maschine"}, "events": {
        "1": {"kind": "alarm", "severity": 3, "confirm": true,
              "text": {"1033": "Temperature {0} too high", "1031": "Temperatur {0} zu hoch"},
              "causeRemedy": [{"id": "a", "cause": {"1033": "Pump off"},
                               "remedy": {"1033": "Start it"}}],
              "details": [{"key": "k", "text": {"1033": "Detail"}, "comment": {"1033": "More"}}]},
        "2": {"kind": "alarm", "severity": 2, "confirm": false, "text": {"1033": "Door open"}},
        "3": {"kind": "message", "severity": 1, "text": {"1033": "Batch done"}}}}},
        "sources": {"Tank": {"1031": "Behälter"}, "Mute": {"1031": ""}}, "logged": )" +
           log + (numbered ? "}" : R"(, "instanceIds": false})");
}

/// Ends a call of the simulator, which has to answer 200.
std::string expectSuccess(int result, char* answer) {
    std::string text = answer ? answer : "";
    ZrSimulatorFree(answer);
    EXPECT_EQ(result, 200) << text;
    return text;
}

void load(const std::string& runtimes) {
    const std::string plant = R"({"localNetId": "5.10.20.1.1.1", "runtimes": {)" + runtimes + "}}";
    char* answer = nullptr;
    const int result = ZrSimulatorLoadPlant(plant.c_str(), &answer);
    expectSuccess(result, answer);
}

}  // namespace

Simulation::Simulation(const std::string& fillerLog, bool numbered) {
    load(runtime(fillerNetId, fillerLog, numbered) + "," + runtime(packerNetId, "[]", numbered));
}

Simulation::Simulation(const std::vector<std::string>& netIds, const std::string& log) {
    std::string runtimes;
    for (const std::string& netId : netIds)
        runtimes += (runtimes.empty() ? "" : ",") + runtime(netId, log, true);
    load(runtimes);
}

Simulation::~Simulation() {
    ZrSimulatorShutdown();
}

void Simulation::act(const std::string& action, const char* netId) {
    SCOPED_TRACE(action);
    char* answer = nullptr;
    const int result = ZrSimulatorApply(netId, action.c_str(), &answer);
    expectSuccess(result, answer);
}

void Simulation::raise(const std::string& name, int event, const char* netId,
                       const std::string& more) {
    act(R"({"do": "raise", "alarm": ")" + name + R"(", "class": ")" + eventClass +
            R"(", "event": )" + std::to_string(event) + more + "}",
        netId);
}

boost::json::object Simulation::status(const char* netId) {
    char* answer = nullptr;
    const int result = ZrSimulatorStatus(netId, &answer);
    return boost::json::parse(expectSuccess(result, answer)).as_object();
}

std::int64_t Simulation::liveObjects(const char* netId) {
    return status(netId).at("liveObjects").to_number<std::int64_t>();
}

std::int64_t Simulation::calls(const char* operation, const char* netId) {
    const auto counted = status(netId).at("calls").as_object();
    const auto* count = counted.if_contains(operation);
    return count ? count->to_number<std::int64_t>() : 0;
}

}  // namespace bridge_test
