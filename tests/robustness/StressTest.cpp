#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "robustness/Crowd.h"
#include "robustness/Eventually.h"
#include "robustness/RunningServer.h"
#include "support/Simulation.h"

using namespace bridge_test;
using testing::IsEmpty;

namespace {

TEST(Stress, EverythingAtATimeLeavesTheServerWithWhatTheLoggersHold) {
    Simulation simulation;
    RunningServer server;
    for (unsigned seed = 100; seed <= 300; seed += 100) {
        SCOPED_TRACE(seed);
        Crowd crowd(simulation, server, seed);
        crowd.waitForSteps(2500);
        crowd.leave();
        EXPECT_GT(crowd.confirmed, 0);
        EXPECT_GT(crowd.localized, 0);
        EXPECT_GT(crowd.reconfigured, 0);

        server.configure("Packer", packerNetId, true);
        EXPECT_THAT(server.differences("Filler", fillerNetId), IsEmpty());
        EXPECT_THAT(server.differences("Packer", packerNetId), IsEmpty());
    }
    for (const char* target : {"Filler", "Packer"}) {
        EXPECT_GT(server.logged(target, "LOGGED_EVENTS_IMPORTED"), 1U);
        EXPECT_GT(server.logged(target, "FORGET_EVENT"), 20U);
    }
    server.stop();
    EXPECT_EQ(simulation.liveObjects(fillerNetId), 0);
    EXPECT_EQ(simulation.liveObjects(packerNetId), 0);
}

TEST(Stress, ShutdownInTheMiddleOfEverything) {
    for (unsigned seed = 1000; seed <= 5000; seed += 1000) {
        SCOPED_TRACE(seed);
        Simulation simulation;
        RunningServer server;
        Crowd crowd(simulation, server, seed);
        crowd.waitForSteps(100);
        server.stop();
        EXPECT_EQ(simulation.liveObjects(fillerNetId), 0);
        EXPECT_EQ(simulation.liveObjects(packerNetId), 0);
    }
}

}  // namespace
