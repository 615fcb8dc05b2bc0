#include <functional>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "robustness/Eventually.h"
#include "robustness/RunningServer.h"
#include "support/Simulation.h"

using namespace bridge_test;
using testing::IsEmpty;

namespace {

/// A call of the target "Filler" that does not return before its time-out.
struct HangingCall {
    const char* operation;
    /// What makes the extension call, unless its timer does; may take as long as the call.
    void (*trigger)(Simulation& simulation, RunningServer& server);
};

hmi::EventRecordPtr firstAlarm(RunningServer& server) {
    hmi::EventFilter filler;
    filler.target = "Filler";
    return server.events.select(filler, 0, 1).events.front();
}

void drop(Simulation& simulation, RunningServer&) {
    simulation.act(R"({"do": "drop"})");
}

const HangingCall hangingCalls[] = {
    {"IsConnected", [](Simulation&, RunningServer&) {}},
    {"ConnectWithSettings", drop},
    {"GetLoggedEvents", drop},
    {"GetActiveAlarms", drop},
    {"GetItem", drop},
    {"Severity", [](Simulation& simulation, RunningServer&) { simulation.raise("new"); }},
    {"Confirm", [](Simulation&,
                   RunningServer& server) { server.calls.confirm(*firstAlarm(server)->alarm()); }},
    {"GetEventText",
     [](Simulation&, RunningServer& server) {
         server.calls.localize(*firstAlarm(server), "de-DE");
     }},
    {"Disconnect",
     [](Simulation&, RunningServer& server) { server.command("ForceReconnect", "Filler"); }},
};

class Hang : public testing::TestWithParam<HangingCall> {
protected:
    std::int64_t calls() {
        return simulation.status().at("calls").at(GetParam().operation).to_number<std::int64_t>();
    }
    std::size_t alarmsOf(const char* target) {
        hmi::EventFilter filter;
        filter.target = target;
        return server.events.select(filter, 0, 1).total;
    }

    /// With an alarm that stands already.
    void startHanging() {
        simulation.raise("old");
        ASSERT_TRUE(eventually([&] { return alarmsOf("Filler") == 1; }));
        const auto before = calls();
        simulation.act(std::string(R"({"do": "pause", "call": ")") + GetParam().operation + "\"}");
        trigger = std::thread([this] { GetParam().trigger(simulation, server); });
        EXPECT_TRUE(eventually([&] { return calls() > before; }));
    }
    void resume() {
        simulation.act(R"({"do": "resume"})");
        trigger.join();
    }

    Simulation simulation;
    RunningServer server;
    std::thread trigger;
};

TEST_P(Hang, TheTargetCanBeRemovedAndComesBack) {
    startHanging();
    server.remove("Filler");
    EXPECT_FALSE(server.diagnostics("Filler").isset());
    EXPECT_EQ(server.logged("Filler", "CORVANE_EVENTLOGGER_ERROR"), 0U) << "after its time-out";

    resume();
    EXPECT_TRUE(eventually([&] { return simulation.liveObjects() == 0; }));
    EXPECT_TRUE(eventually([&] { return alarmsOf("Filler") == 0; }));
    server.configure("Filler", fillerNetId, true);
    EXPECT_THAT(server.differences("Filler", fillerNetId), IsEmpty());
}

void PrintTo(const HangingCall& call, std::ostream* out) {
    *out << call.operation;
}

std::string nameOf(const testing::TestParamInfo<HangingCall>& call) {
    return call.param.operation;
}

INSTANTIATE_TEST_SUITE_P(Calls, Hang, testing::ValuesIn(hangingCalls), nameOf);

}  // namespace
