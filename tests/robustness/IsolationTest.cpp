/// One healthy target system among many that hang, each in another call: whatever the healthy one
/// needs comes while all the others are still hanging.
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "robustness/Eventually.h"
#include "robustness/RunningServer.h"
#include "support/Simulation.h"

using namespace bridge_test;

namespace {

constexpr const char* healthyNetId = "5.10.20.100.1.1";
/// Calls in which a runtime hangs, and how it comes to that call.
struct Sickness {
    const char* call;
    bool dropped = false;    ///< so that it has to be connected and imported again
    bool raising = false;    ///< an alarm, so that a notification calls it
    bool confirming = false;
    bool localizing = false;
    bool reconnecting = false;
};
const Sickness sicknesses[] = {
    {.call = "ConnectWithSettings", .dropped = true},
    {.call = "IsConnected"},
    {.call = "GetLoggedEvents", .dropped = true},
    {.call = "GetActiveAlarms", .dropped = true},
    {.call = "GetItem", .dropped = true},
    {.call = "Disconnect", .reconnecting = true},
    {.call = "Severity", .raising = true},
    {.call = "Confirm", .confirming = true},
    {.call = "GetEventText", .localizing = true},
};
constexpr std::size_t sickTargets = 20;

std::string netIdOf(std::size_t index) {
    return "5.10.20." + std::to_string(index + 1) + ".1.1";
}
std::string nameOf(std::size_t index) {
    return "Sick" + std::to_string(index);
}
const Sickness& sicknessOf(std::size_t index) {
    return sicknesses[index % std::size(sicknesses)];
}

std::vector<std::string> allNetIds() {
    std::vector<std::string> all{healthyNetId};
    for (std::size_t index = 0; index < sickTargets; ++index)
        all.push_back(netIdOf(index));
    return all;
}

std::vector<ConfiguredTarget> allTargets() {
    std::vector<ConfiguredTarget> targets{{"Healthy", healthyNetId}};
    for (std::size_t index = 0; index < sickTargets; ++index)
        targets.push_back({nameOf(index), netIdOf(index)});
    return targets;
}

struct Isolation : testing::Test {
    ~Isolation() override {
        for (std::size_t index = 0; index < sickTargets; ++index)
            simulation.act(R"({"do": "resume"})", netIdOf(index).c_str());
        for (std::thread& thread : waiting)
            thread.join();
    }

    hmi::EventPage alarmsOf(const std::string& target) {
        hmi::EventFilter filter;
        filter.target = target;
        return server.events.select(filter, 0, 10);
    }
    std::string stateOf(const std::string& target) {
        return server.diagnostics(target.c_str()).get_map().get("connectionState").get_string();
    }
    std::int64_t calls(const char* operation, const std::string& netId) {
        return simulation.calls(operation, netId.c_str());
    }

    /// Each with an alarm that stands already.
    void makeSick(std::size_t index) {
        const Sickness& sickness = sicknessOf(index);
        const std::string netId = netIdOf(index);
        simulation.raise("old", 1, netId.c_str());
        ASSERT_TRUE(eventually([&] { return alarmsOf(nameOf(index)).total == 1; }));
        const auto before = calls(sickness.call, netId);
        simulation.act(std::string(R"({"do": "pause", "call": ")") + sickness.call + "\"}",
                       netId.c_str());
        if (sickness.dropped)
            simulation.act(R"({"do": "drop"})", netId.c_str());
        if (sickness.raising)
            simulation.raise("new", 1, netId.c_str());
        const hmi::EventRecordPtr alarm = alarmsOf(nameOf(index)).events.front();
        if (sickness.confirming)
            waiting.emplace_back([this, alarm] { server.calls.confirm(*alarm->alarm()); });
        if (sickness.reconnecting)
            waiting.emplace_back(
                [this, index] { server.command("ForceReconnect", nameOf(index).c_str()); });
        if (sickness.localizing)
            waiting.emplace_back([this, alarm] { server.calls.localize(*alarm, "de-DE"); });
        ASSERT_TRUE(eventually([&] { return calls(sickness.call, netId) > before; }))
            << sickness.call;
    }
    /// None has got on: not its call that hangs, and no time-out has ended it.
    void expectStillHanging() {
        for (std::size_t index = 0; index < sickTargets; ++index)
            EXPECT_EQ(server.logged(nameOf(index).c_str(), "CORVANE_EVENTLOGGER_ERROR"), 0U);
    }

    Simulation simulation{allNetIds()};
    RunningServer server{allTargets(), "PT60S"};
    std::vector<std::thread> waiting;
};

TEST_F(Isolation, TheHealthyTargetGetsWhatItNeedsWhileTwentyOthersHang) {
    ASSERT_TRUE(eventually([&] { return stateOf("Healthy") == "Good"; }));
    for (std::size_t index = 0; index < sickTargets; ++index)
        makeSick(index);

    // It is checked, reconnects, and its events are listed.
    const auto checks = calls("IsConnected", healthyNetId);
    EXPECT_TRUE(eventually([&] { return calls("IsConnected", healthyNetId) > checks + 1; }));
    simulation.act(R"({"do": "drop"})", healthyNetId);
    EXPECT_TRUE(eventually([&] { return calls("ConnectWithSettings", healthyNetId) == 2; }));
    simulation.raise("urgent", 1, healthyNetId);
    ASSERT_TRUE(eventually([&] { return alarmsOf("Healthy").total == 1; }));

    // Its alarm is confirmed and localized, and everybody gets their diagnostics.
    const hmi::EventRecordPtr alarm = alarmsOf("Healthy").events.front();
    EXPECT_EQ(server.calls.localize(*alarm, "de-DE").value().result,
              ZrHmiSrv::ErrorValue::success);
    EXPECT_EQ(server.calls.confirm(*alarm->alarm()).value(), ZrHmiSrv::ErrorValue::success);
    EXPECT_TRUE(eventually([&] { return !alarmsOf("Healthy").events.front()->unconfirmed; }));
    EXPECT_EQ(stateOf("Healthy"), "Good");

    // It can be changed, removed and come back.
    server.configure("Healthy", healthyNetId, false);
    server.remove("Healthy");
    EXPECT_TRUE(eventually([&] { return alarmsOf("Healthy").total == 0; }));
    server.configure("Healthy", healthyNetId, true);
    EXPECT_TRUE(eventually([&] { return alarmsOf("Healthy").total == 1; }));
    expectStillHanging();
}

}  // namespace
