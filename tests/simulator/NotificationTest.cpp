#include <atomic>
#include <future>

#include <gmock/gmock.h>

#include "simulator/Client.h"

using testing::ElementsAre;

namespace {

class NotificationTest : public SimulatorTest {
protected:
    NotificationTest() { EXPECT_EQ(client.connect(), S_OK); }
};

TEST_F(NotificationTest, AreHeldBackInOrderAndEndWithTheirConnection) {
    EXPECT_EQ(client.connect(), S_OK);  // connected already: nothing comes twice
    Client other;
    EXPECT_EQ(other.connect(), S_OK);
    act("[{'do': 'hold'}, {'do': 'raise', 'alarm': 'A', #2}, {'do': 'message', #3, 'count': 2},"
        " {'do': 'clear', 'alarm': 'A'}]");
    EXPECT_TRUE(client.activeAlarms().empty());
    EXPECT_TRUE(other.waitFor(0).empty());
    EXPECT_EQ(client.logger->Disconnect(), S_OK);
    EXPECT_EQ(client.connect(), S_OK);
    act("[{'do': 'release'}, {'do': 'databaseChanged', 'reason': 2}]");
    EXPECT_THAT(other.waitFor(5), ElementsAre("raised 2", "message 3", "message 3",
                                              "cleared 2 removed", "database 2"));
    EXPECT_THAT(client.waitFor(1), ElementsAre("database 2"));
    act("[{'do': 'hold'}, {'do': 'databaseChanged', 'reason': 3}, {'do': 'drop'}]");
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(client.connect(), S_OK);
    act("[{'do': 'release'}, {'do': 'databaseChanged', 'reason': 0}]");
    EXPECT_THAT(client.waitFor(2), ElementsAre("database 2", "database 0"));
}

TEST_F(NotificationTest, DisconnectDoesNotWaitForThemButUnadviseDoes) {
    std::promise<void> entered, leave;
    std::atomic<bool> left = false;
    client.inside = [&](const std::string&) {
        entered.set_value();
        leave.get_future().wait();
        left = true;
    };
    act("{'do': 'databaseChanged', 'reason': 0}");
    entered.get_future().wait();
    EXPECT_EQ(client.logger->Disconnect(), S_OK);
    EXPECT_FALSE(left);
    auto unadvised = std::async(std::launch::async, [&] {
        EXPECT_EQ(client.unadvise(), S_OK);
        EXPECT_TRUE(left);
    });
    EXPECT_EQ(unadvised.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    leave.set_value();
    unadvised.get();
}

TEST_F(NotificationTest, ComeWithNoLockHeld) {
    client.inside = [&](const std::string& text) {
        // From another thread: a lock that the caller holds could not stop the caller itself.
        std::async(std::launch::async, [&] {
            EXPECT_EQ(client.activeAlarms().at(0)->Confirm(), text == "raised 1" ? S_OK : S_FALSE);
            EXPECT_EQ(simulation.status().at("connected"), true);
        }).wait();
        if (text != "raised 1") {
            EXPECT_EQ(client.unadvise(), S_OK);
            EXPECT_EQ(client.logger->Disconnect(), S_OK);
        }
    };
    act("{'do': 'raise', 'alarm': 'A', #1}");
    EXPECT_THAT(client.waitFor(2), ElementsAre("raised 1", "confirmed 1 stays"));
    EXPECT_FALSE(client.isConnected());
}

}  // namespace
