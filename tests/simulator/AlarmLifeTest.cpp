#include <gmock/gmock.h>

#include "simulator/SimulatorFixture.h"

using testing::ElementsAre;
using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::ComPtr;

namespace {

/// A connected client.
class AlarmLifeTest : public SimulatorFixture {
protected:
    AlarmLifeTest() {
        EXPECT_EQ(client.advise(), S_OK);
        EXPECT_EQ(client.connect(), S_OK);
    }

    Client client;
};

std::uint64_t ticks(const FILETIME& time) {
    return (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

/// The times and state of an alarm, read through its interface.
struct Life {
    explicit Life(const RecordingSink::Alarm& alarm) {
        FILETIME time{};
        EXPECT_EQ(alarm->get_TimeRaised(&time), S_OK);
        raised = ticks(time);
        EXPECT_EQ(alarm->get_TimeCleared(&time), S_OK);
        cleared = ticks(time);
        EXPECT_EQ(alarm->get_TimeConfirmed(&time), S_OK);
        confirmed = ticks(time);
        EXPECT_EQ(alarm->get_ConfirmationState(&state), S_OK);
        EXPECT_EQ(alarm.query<IZrEventInstance>()->get_InstanceId(&instance), S_OK);
    }

    std::uint64_t raised = 0, cleared = 0, confirmed = 0;
    ULONG state = 0;
    ULONG instance = 0;
};

constexpr ULONG notRequired = 1;
constexpr ULONG pending = 2;
constexpr ULONG confirmed = 3;

TEST_F(AlarmLifeTest, LivesUntilItIsClearedAndConfirmed) {
    apply("{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7}");
    apply("{'do': 'clear', 'alarm': 'A'}");
    apply("{'do': 'clear', 'alarm': 'A'}");  // cleared already
    apply("{'do': 'confirm', 'alarm': 'A'}");
    apply("[{'do': 'confirm', 'alarm': 'A'}, {'do': 'clear', 'alarm': 'A'}]");  // has ended
    apply("{'do': 'databaseChanged', 'reason': 0}");

    EXPECT_THAT(client.sink.waitFor(4),
                ElementsAre("raised 7", "cleared 7", "confirmed 7 removed", "database 0"));
    const Life life(client.sink.alarms()[0]);
    EXPECT_LT(life.raised, life.cleared);
    EXPECT_LT(life.cleared, life.confirmed);
    EXPECT_EQ(life.state, confirmed);
    EXPECT_NE(client.sink.thread(), std::this_thread::get_id());
}

TEST_F(AlarmLifeTest, EndsWithClearWhenNothingIsLeftToConfirm) {
    apply(
        "[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 8},"
        " {'do': 'raise', 'alarm': 'B', 'class': 'CLASS', 'event': 7},"
        " {'do': 'confirm', 'alarm': 'A'},"
        " {'do': 'confirm', 'alarm': 'B'}, {'do': 'clear', 'alarm': 'B'},"
        " {'do': 'clear', 'alarm': 'A'}]");
    EXPECT_THAT(client.sink.waitFor(5), ElementsAre("raised 8", "raised 7", "confirmed 7",
                                                    "cleared 7 removed", "cleared 8 removed"));
    EXPECT_EQ(Life(client.sink.alarms()[0]).state, notRequired);
    EXPECT_TRUE(client.activeAlarms().empty());
}

TEST_F(AlarmLifeTest, IsOneObjectHoweverOftenItIsRaised) {
    apply("{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7}");
    apply(
        "[{'do': 'confirm', 'alarm': 'A'}, {'do': 'raise', 'alarm': 'A', 'class': 'CLASS',"
        " 'event': 7, 'severity': 4}]");
    client.sink.waitFor(3);

    const auto alarms = client.sink.alarms();
    const auto active = client.activeAlarms();
    ASSERT_EQ(active.size(), 1u);
    EXPECT_EQ(active[0], alarms[0]);
    EXPECT_EQ(alarms[2], alarms[0]);
    const Life again(alarms[0]);
    EXPECT_EQ(again.state, pending);
    EXPECT_EQ(again.confirmed, 0u);
    ULONG severity = 0;
    EXPECT_EQ(alarms[0]->get_Severity(&severity), S_OK);
    EXPECT_EQ(severity, 4u);
    EXPECT_EQ(status().at("logged").to_number<int>(), 1);

    apply(
        "[{'do': 'clear', 'alarm': 'A'}, {'do': 'confirm', 'alarm': 'A'},"
        " {'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7}]");
    client.sink.waitFor(6);
    const auto next = client.sink.alarms()[5];
    EXPECT_FALSE(next == alarms[0]);  // a new life is a new object
    EXPECT_NE(Life(next).instance, again.instance);
    EXPECT_EQ(alarms[0]->Confirm(), S_FALSE);  // its life is over
    EXPECT_EQ(Life(next).state, pending);
}

TEST_F(AlarmLifeTest, RaisesSeriesWithStepsOrAtOneTime) {
    apply("{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7, 'count': 3}");
    apply(
        "{'do': 'raise', 'alarm': 'B', 'class': 'CLASS', 'event': 8, 'count': 2,"
        " 'timeRaised': '2024-02-29T23:59:59.1234567Z'}");
    client.sink.waitFor(5);
    const auto active = client.activeAlarms();
    ASSERT_EQ(active.size(), 5u);
    const Life b0(active[0]), b1(active[1]), a0(active[2]), a1(active[3]), a2(active[4]);
    EXPECT_EQ(b0.raised, 133537247991234567u);
    EXPECT_EQ(b1.raised, b0.raised);
    EXPECT_NE(b1.instance, b0.instance);
    EXPECT_EQ(a1.raised, a0.raised + 1);
    EXPECT_EQ(a2.raised, a1.raised + 1);
    EXPECT_EQ(status().at("alarms"),
              boost::json::value({{"A-0", {{"active", true}, {"confirmed", false}}},
                                  {"A-1", {{"active", true}, {"confirmed", false}}},
                                  {"A-2", {{"active", true}, {"confirmed", false}}},
                                  {"B-0", {{"active", true}, {"confirmed", false}}},
                                  {"B-1", {{"active", true}, {"confirmed", false}}}}));
}

TEST_F(AlarmLifeTest, IsConfirmedByTheClient) {
    apply(
        "[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7},"
        " {'do': 'raise', 'alarm': 'B', 'class': 'CLASS', 'event': 7, 'confirm': false}]");
    client.sink.waitFor(2);
    const auto alarms = client.sink.alarms();
    EXPECT_EQ(alarms[0]->Confirm(), S_OK);
    EXPECT_EQ(alarms[0]->Confirm(), S_FALSE);
    EXPECT_EQ(alarms[1]->Confirm(), S_FALSE);
    EXPECT_EQ(client.sink.waitFor(3).back(), "confirmed 7");
    EXPECT_EQ(status().at("alarms").at("A").at("confirmed"), true);

    client.logger->Disconnect();
    EXPECT_EQ(alarms[0]->Confirm(), protocolError(0x748));
    EXPECT_EQ(Life(alarms[0]).state, confirmed);  // can still be read
}

TEST_F(AlarmLifeTest, GoesOnWhileNoOneIsConnected) {
    client.logger->Disconnect();
    apply(
        "[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7},"
        " {'do': 'message', 'class': 'CLASS', 'event': 20}]");
    EXPECT_EQ(client.connect(), S_OK);
    apply("{'do': 'databaseChanged', 'reason': 3}");
    EXPECT_THAT(client.sink.waitFor(1), ElementsAre("database 3"));
    EXPECT_EQ(client.activeAlarms().size(), 1u);
    EXPECT_EQ(status().at("logged").to_number<int>(), 2);
}

}  // namespace
