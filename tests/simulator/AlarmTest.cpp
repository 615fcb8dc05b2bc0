#include <gmock/gmock.h>

#include "simulator/Client.h"
#include "simulator/Control.h"

using bridge_test::packerNetId;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::ComPtr;

namespace {

class AlarmTest : public SimulatorTest {
protected:
    AlarmTest() { EXPECT_EQ(client.connect(), S_OK); }

    ComPtr<IZrLoggedEventCollection> logged(ULONG limit) {
        ComPtr<IZrLoggedEventCollection> collection;
        EXPECT_EQ(client.logger->GetLoggedEvents(limit, collection.put()), S_OK);
        return collection;
    }

    /// The ids of the newest logged events, with "*" for those that are marked as active.
    std::vector<std::string> newestIds(ULONG limit) {
        std::vector<std::string> ids;
        ComPtr<IZrLoggedEvent> event;
        for (ULONG i = 0; logged(limit)->get_Item(i, event.put()) == S_OK; ++i) {
            ULONG id = 0;
            VARIANT_BOOL active = VARIANT_FALSE;
            EXPECT_EQ(event->get_EventId(&id), S_OK);
            EXPECT_EQ(event.query<IZrLoggedEvent2>()->get_IsActive(&active), S_OK);
            ids.push_back(std::to_string(id) + (active == VARIANT_TRUE ? "*" : ""));
        }
        return ids;
    }
};

std::uint64_t timeRaised(const Client::Alarm& alarm) {
    FILETIME time{};
    EXPECT_EQ(alarm->get_TimeRaised(&time), S_OK);
    return (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

ULONG instanceOf(const Client::Alarm& alarm) {
    ULONG id = 0;
    EXPECT_EQ(alarm.query<IZrEventInstance>()->get_InstanceId(&id), S_OK);
    return id;
}

TEST_F(AlarmTest, IsLoggedInTheOrderOfTheTimesRaised) {
    act("[{'do': 'message', #3, 'timeRaised': '2024-02-29T23:59:59.1234567Z'},"
        " {'do': 'raise', 'alarm': 'A', #1, 'count': 3},"
        " {'do': 'raise', 'alarm': 'B', #2, 'timeRaised': '2024-02-29T23:59:58Z', 'count': 2}]");
    EXPECT_THAT(newestIds(10), ElementsAre("2*", "2*", "3", "1*", "1*", "1*"));
    EXPECT_THAT(newestIds(4), ElementsAre("3", "1*", "1*", "1*"));
    EXPECT_THAT(newestIds(0), IsEmpty());
    const auto active = client.activeAlarms();
    EXPECT_EQ(timeRaised(active[0]), 133537247980000000u);
    EXPECT_EQ(timeRaised(active[1]), timeRaised(active[0]));
    EXPECT_EQ(timeRaised(active[3]), timeRaised(active[2]) + 1);
    EXPECT_NE(instanceOf(active[1]), instanceOf(active[0]));

    act("[{'do': 'clear', 'alarm': 'A-0'}, {'do': 'clear', 'alarm': 'B-1'},"
        " {'do': 'raise', 'alarm': 'B-0', #2}]");
    EXPECT_THAT(newestIds(10), ElementsAre("2", "3", "1*", "1*", "1*", "2*"));
    client.waitFor(9);
    act("{'do': 'clearLoggedEvents'}");
    EXPECT_EQ(client.waitFor(10).back(), "database 1");
    EXPECT_THAT(newestIds(10), IsEmpty());
    EXPECT_EQ(client.activeAlarms().size(), 4u);
}

TEST_F(AlarmTest, IsCountedUntilItIsReleasedAndOutlivesThePlant) {
    constexpr int own = 2;  // the client's logger and its connection point
    EXPECT_EQ(simulation.liveObjects(), own);
    {
        const Client other;  // is of every runtime, for want of an address
        EXPECT_EQ(simulation.liveObjects(), own + 2);
        EXPECT_EQ(simulation.liveObjects(packerNetId), 2);
    }
    EXPECT_EQ(simulation.liveObjects(packerNetId), 0);
    act("[{'do': 'raise', 'alarm': 'A', #1, 'count': 3}, {'do': 'message', #3}]");
    client.waitFor(4);
    EXPECT_EQ(simulation.liveObjects(), own);  // what the library itself holds does not count
    {
        const auto log = logged(10);
        const auto alarms = client.activeAlarms();
        EXPECT_EQ(simulation.liveObjects(), own + 1 + 3);
    }
    const Client::Alarm alarm = client.activeAlarms()[0];
    const ULONG instance = instanceOf(alarm);
    EXPECT_EQ(simulation.liveObjects(), own + 1);

    const bridge_test::Simulation next;
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(alarm->Confirm(), protocolError(0x748));
    EXPECT_EQ(client.connect(), S_OK);
    EXPECT_THAT(client.activeAlarms(), IsEmpty());
    EXPECT_EQ(simulation.liveObjects(), own);  // the alarm is not one of the new runtime
    ZrSimulatorShutdown();
    EXPECT_EQ(instanceOf(alarm), instance);
}

}  // namespace
