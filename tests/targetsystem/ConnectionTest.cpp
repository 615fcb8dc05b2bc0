/// A target system against a simulated runtime that refuses, accepts, falls back and drops.
#include <atomic>
#include <future>
#include <memory>
#include <thread>

#include <gmock/gmock.h>

#include "simulator/FnxSimulator.h"
#include "support/Simulation.h"
#include "targetsystem/FnxHelper.h"
#include "targetsystem/TargetSystemPlatformSpecific.h"
#include "targetsystem/proxy/ErrorText.h"
#include "tests/events/RecordingLogging.h"

namespace {

using namespace bridge_test;
using namespace testing;
using ZrHmiEventLogger::FnxHelper;
using ZrHmiEventLogger::ImportResultPtr;
using ZrHmiEventLogger::TargetSystem;

struct Connection : Test {
    bool check() {
        ImportResultPtr result;
        return target->CheckConnection(result);
    }
    bool connect() {
        ImportResultPtr result;
        return target->Connect(result);
    }
    /// With a number as the only argument.
    HRESULT notify(DISPID id, LONG number) {
        VARIANTARG argument;
        VariantInit(&argument);
        argument.vt = VT_I4;
        argument.lVal = number;
        DISPPARAMS arguments{&argument, nullptr, 1, 0};
        return target->Invoke(id, IID_IUnknown, 0, 1, &arguments, nullptr, nullptr, nullptr);
    }
    /// "connected", "failed 0x...", or "down".
    std::string state() const {
        const auto now = target->GetConnectionState();
        if (now.connected)
            return "connected";
        const HRESULT error = now.connectError.value_or(S_OK);
        return FAILED(error) ? "failed " + ZrAtlCom::hexText(error) : "down";
    }

    Simulation simulation{std::string(R"([{"event": 3, "timeRaised": "2020-01-01T00:00:00Z",)") +
                          R"("class": ")" + eventClass + R"("}])"};
    RecordingLogging logging;
    ZrHmiEventLogger::LocalAddress localAddress;
    std::atomic<bool> stopping = false;
    std::atomic<std::int32_t> ids = 1;
    std::shared_ptr<TargetSystem> make(const char* address) {
        const auto made = ZrHmiEventLogger::TargetSystemPlatformSpecific<TargetSystem>::make(
            ZrHmiEventLogger::TargetSystemSettings{
                "Filler", address, true, ZrHmiSrv::Timespan::from_milliseconds(20'000), 10},
            "Domain", localAddress, logging, stopping, ids);
        made->prepare();
        return made;
    }
    std::shared_ptr<TargetSystem> target = make(fillerNetId);
};

TEST_F(Connection, ShowsEachStateAndLogsEachStepOnce) {
    const auto refused = "TARGET_SYSTEM_CONNECT_FAILED Filler 0x98110745";
    simulation.act(R"({"do": "refuse", "hresult": "0x98110745"})");
    EXPECT_FALSE(check());
    EXPECT_EQ(state(), "down") << "unknown before: no error yet";
    for (int tick = 0; tick < 3; ++tick) {
        EXPECT_THAT(logging.take(), ElementsAre(refused));
        EXPECT_FALSE(check());
        EXPECT_EQ(state(), "failed 0x98110745");
    }
    logging.take();

    simulation.act(R"({"do": "accept"})");
    simulation.raise("hot");
    EXPECT_TRUE(check());
    EXPECT_EQ(state(), "connected");
    EXPECT_THAT(logging.take(), ElementsAre("TARGET_SYSTEM_CONNECTED Filler",
                                            StartsWith("LOGGED_EVENTS_IMPORTED Filler ")));
    EXPECT_FALSE(check());
    EXPECT_THAT(logging.take(), IsEmpty()) << "nothing is imported again";

    simulation.act(R"([{"do": "refuse", "hresult": "0x98110006"}, {"do": "drop"}])");
    EXPECT_TRUE(check()) << "its alarms left";
    EXPECT_EQ(state(), "down") << "a dropped connection shows no error at first";
    EXPECT_EQ(target->statistics().cachedAlarmsCount, 0U);
    EXPECT_FALSE(check()) << "they leave once";
    EXPECT_EQ(state(), "failed 0x98110006");
    simulation.act(R"({"do": "accept"})");
    EXPECT_TRUE(check());
    EXPECT_EQ(target->statistics().activeAlarmsCount, 1U);
}

TEST_F(Connection, FallsBackToThePlainConnect) {
    simulation.act(R"({"do": "fail", "call": "ConnectWithSettings", "hresult": "0x98110701"})");
    EXPECT_TRUE(check());
    EXPECT_EQ(state(), "connected");
    EXPECT_EQ(simulation.calls("Connect"), 1);
    target->RequestReconnect();
    EXPECT_TRUE(check()) << "a requested reconnect imports again";
    EXPECT_EQ(simulation.calls("ConnectWithSettings"), 2);
}

TEST_F(Connection, FailuresOfTheAskingItselfEndWell) {
    ASSERT_TRUE(check());
    simulation.raise("hot");
    while (target->statistics().activeAlarmsCount == 0)
        std::this_thread::yield();
    simulation.act(R"({"do": "fail", "call": "IsConnected", "hresult": "0x80004005"})");
    EXPECT_TRUE(check());
    EXPECT_EQ(state(), "down");
    EXPECT_EQ(target->statistics().activeAlarmsCount, 0U);
    EXPECT_TRUE(check()) << "the connection stands, but its alarms had left";
    EXPECT_EQ(target->statistics().activeAlarmsCount, 1U);
    simulation.act(R"({"do": "fail", "call": "Disconnect", "hresult": "0x80004005"})");
    EXPECT_EQ(target->RequestReconnect(), E_FAIL);
    EXPECT_TRUE(check()) << "the import that was asked for is owed all the same";
    target->retire(TargetSystem::TimePoint::max());
    EXPECT_TRUE(check()) << "its alarms left";
    EXPECT_FALSE(check());
    EXPECT_EQ(state(), "down") << "for good";
}

TEST_F(Connection, AFailedImportKeepsTheMessagesAndTriesAgain) {
    simulation.act(R"({"do": "hold"})");  // the import alone brings the alarm
    simulation.raise("hot");
    ASSERT_TRUE(connect());
    target->RequestReconnect();
    logging.take();
    simulation.act(R"({"do": "fail", "call": "GetActiveAlarms", "hresult": "0x80070005"})");
    EXPECT_FALSE(connect());
    EXPECT_THAT(logging.take(), ElementsAre(StartsWith("TARGET_SYSTEM_CONNECTED Filler"),
                                            StartsWith("error Filler ")));
    EXPECT_EQ(target->statistics().cachedMessagesCount, 1U);
    EXPECT_EQ(target->statistics().cachedAlarmsCount, 0U);
    EXPECT_EQ(state(), "failed 0x80070005");
    EXPECT_EQ(simulation.calls("Disconnect"), 2);

    EXPECT_TRUE(check()) << "connects and imports again";
    EXPECT_EQ(state(), "connected");
    simulation.act(R"({"do": "fail", "call": "GetLoggedEvents", "hresult": "0x8007000e"})");
    target->RequestReconnect();
    EXPECT_TRUE(check()) << "its alarms left";
    EXPECT_EQ(state(), "failed 0x8007000e") << "at once: it is not the connection that was lost";
    EXPECT_TRUE(check());
    EXPECT_EQ(target->statistics().activeAlarmsCount, 1U);
    EXPECT_EQ(state(), "connected");
}

TEST_F(Connection, IsNeverGoodAndDeaf) {
    target.reset();
    simulation.act(R"({"do": "fail", "call": "Advise", "hresult": "0x80004005", "times": 3})");
    target = make(fillerNetId);
    for (int tick = 0; tick < 2; ++tick) {
        EXPECT_FALSE(check());
        EXPECT_THAT(logging.take(), ElementsAre("TARGET_SYSTEM_CONNECT_FAILED Filler 0x80004005"));
    }
    EXPECT_EQ(state(), "failed 0x80004005");
    EXPECT_TRUE(check());
    simulation.raise("hot");
    while (target->statistics().activeAlarmsCount == 0)
        std::this_thread::yield();

    simulation.act(R"({"do": "fail", "call": "Advise", "hresult": "0x80004005"})");
    target->Disconnect();
    EXPECT_TRUE(check()) << "its alarms left, and nobody would hear of new ones";
    EXPECT_TRUE(check());
    EXPECT_EQ(target->statistics().activeAlarmsCount, 1U);
}

TEST_F(Connection, WaitsForTheRouterThatCompletesItsAddress) {
    FnxNetId local{{5, 10, 20, 1, 1, 1}};
    ZrFnxSimulatorSetLocalNetId(nullptr);
    target = make("30.1.1");
    for (int tick = 0; tick < 2; ++tick) {
        EXPECT_FALSE(check());
        EXPECT_THAT(logging.take(), ElementsAre(StartsWith("error Filler The address of this")));
    }
    EXPECT_EQ(simulation.calls("ConnectWithSettings"), 0);
    target = make(fillerNetId);
    EXPECT_TRUE(connect()) << "a full address needs none";
    target = make("30.1.1");
    ZrFnxSimulatorSetLocalNetId(&local);
    EXPECT_TRUE(check());
    ZrFnxSimulatorSetLocalNetId(nullptr);
    EXPECT_EQ(localAddress.lookUp(), "5.10.20.1.1.1") << "once known it is kept";
    ZrFnxSimulatorSetLocalNetId(&local);
}

TEST_F(Connection, WhatComesBackLateReachesNobody) {
    ASSERT_TRUE(connect());
    simulation.raise("hot");
    while (target->statistics().activeAlarmsCount == 0)
        std::this_thread::yield();
    logging.take();
    const auto severities = simulation.calls("Severity");
    const auto checks = simulation.calls("IsConnected");
    simulation.act(R"([{"do": "pause", "call": "Severity"}, {"do": "pause", "call": "IsConnected"}])");
    simulation.raise("late");
    std::thread checking([this] { check(); });
    while (simulation.calls("Severity") == severities ||
           simulation.calls("IsConnected") == checks)
        std::this_thread::yield();
    target->beginRetiring(TargetSystem::TimePoint::max());
    simulation.act(R"({"do": "resume"})");
    checking.join();
    target->retire(TargetSystem::TimePoint::max());
    target.reset();
    EXPECT_THAT(logging.take(), IsEmpty());
    EXPECT_EQ(simulation.liveObjects(), 0);
}

TEST_F(Connection, AHostThatHangsKeepsNoRetiringWaiting) {
    ASSERT_TRUE(connect());
    std::promise<void> inside;
    std::promise<void> released;
    logging.onCall = [&](const std::string& line) {
        if (line.starts_with("raise ")) {
            inside.set_value();
            released.get_future().wait();
        }
    };
    simulation.raise("hot");
    inside.get_future().wait();
    target->beginRetiring(std::chrono::steady_clock::now());
    logging.take();
    released.set_value();
    target->retire(TargetSystem::TimePoint::max());
    EXPECT_THAT(logging.take(), IsEmpty());
}

TEST_F(Connection, ANotificationThatDoesNotFitIsMadeUpForByAnImport) {
    ASSERT_TRUE(connect());
    simulation.act(R"({"do": "hold"})");
    simulation.raise("hot");
    logging.take();
    EXPECT_EQ(notify(3, 1), DISP_E_TYPEMISMATCH);
    EXPECT_THAT(logging.take(), ElementsAre(StartsWith("error Filler A notification does not ")));
    EXPECT_TRUE(check());
    EXPECT_EQ(target->statistics().activeAlarmsCount, 1U);
    logging.take();
    EXPECT_EQ(notify(3, 1), DISP_E_TYPEMISMATCH);
    EXPECT_THAT(logging.take(), ElementsAre(HasSubstr("(2 so far)")));
    EXPECT_FALSE(check()) << "a library that always passes that stays connected";
    EXPECT_EQ(simulation.calls("Disconnect"), 1);
    simulation.act(R"({"do": "drop"})");
    EXPECT_TRUE(check());
    EXPECT_EQ(notify(3, 1), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(simulation.calls("Disconnect"), 2) << "on another connection once more";
    target->beginRetiring(TargetSystem::TimePoint::max());
    EXPECT_EQ(notify(3, 1), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(simulation.calls("Disconnect"), 2) << "nobody waits for it any more";
}

TEST_F(Connection, ADatabaseChangeDuringAnImportReconnectsAfterwards) {
    simulation.act(R"({"do": "pause", "call": "GetActiveAlarms"})");
    std::thread importing([this] { EXPECT_TRUE(connect()); });
    while (simulation.calls("GetActiveAlarms") == 0)
        std::this_thread::yield();
    EXPECT_EQ(notify(10, ZrEventLoggerFnxProxyLib::databaseChangeLoggedEventsCleared), S_OK);
    simulation.act(R"({"do": "resume"})");
    importing.join();
    EXPECT_THAT(logging.take(), Contains("DATABASE_CHANGED Filler ClearLoggedEvents"));
    EXPECT_EQ(simulation.calls("Disconnect"), 1);
    EXPECT_TRUE(check());
    EXPECT_EQ(simulation.calls("GetActiveAlarms"), 2);
    EXPECT_THAT(logging.take(), Not(Contains(StartsWith("DATABASE_CHANGED"))));
}

TEST(Address, IsCompletedFromTheLocalOne) {
    const std::string local = "5.10.20.1.1.1";
    const std::pair<const char*, const char*> cases[] = {
        {"", "5.10.20.1.1.1"},
        {"LocaL", "5.10.20.1.1.1"},
        {"7", "5.10.20.1.1.7"},
        {"30.1.1", "5.10.20.30.1.1"},
    };
    for (const auto& [address, full] : cases)
        EXPECT_EQ(FnxHelper::resolveAddress(address, local), full);
    for (const char* asItIs : {"1.2.3.4.5.6", "1.2.3.4.5.6.7", "256.1.1", "1..1", "1.1.", "filler"})
        EXPECT_EQ(FnxHelper::resolveAddress(asItIs, local), asItIs);
    EXPECT_EQ(FnxHelper::resolveAddress("30.1.1", ""), "30.1.1");
}

}  // namespace
