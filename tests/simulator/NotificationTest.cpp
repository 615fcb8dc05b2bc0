#include <atomic>
#include <future>

#include <gmock/gmock.h>

#include "simulator/SimulatorFixture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A connected client.
class NotificationTest : public SimulatorFixture {
protected:
    NotificationTest() {
        EXPECT_EQ(client.advise(), S_OK);
        EXPECT_EQ(client.connect(), S_OK);
    }
    void send(int reason) {
        apply("{'do': 'databaseChanged', 'reason': " + std::to_string(reason) + "}");
    }

    Client client;
};

TEST_F(NotificationTest, AreHeldBackInOrder) {
    EXPECT_EQ(client.connect(), S_OK);  // connected already: nothing comes twice
    apply("{'do': 'hold'}");
    apply(
        "[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 8},"
        " {'do': 'message', 'class': 'CLASS', 'event': 20, 'count': 2},"
        " {'do': 'clear', 'alarm': 'A'}]");
    EXPECT_THAT(client.sink.received(), IsEmpty());
    EXPECT_EQ(client.activeAlarms().size(), 0u);
    apply("{'do': 'release'}");
    EXPECT_THAT(client.sink.waitFor(4),
                ElementsAre("raised 8", "message 20", "message 20", "cleared 8 removed"));
}

TEST_F(NotificationTest, OfAConnectionEndWithIt) {
    Client other;
    EXPECT_EQ(other.advise(), S_OK);
    EXPECT_EQ(other.connect(), S_OK);
    apply("{'do': 'hold'}");
    send(1);
    EXPECT_EQ(client.logger->Disconnect(), S_OK);
    EXPECT_EQ(client.connect(), S_OK);
    apply("[{'do': 'release'}, {'do': 'databaseChanged', 'reason': 2}]");
    EXPECT_THAT(other.sink.waitFor(2), ElementsAre("database 1", "database 2"));
    EXPECT_THAT(client.sink.waitFor(1), ElementsAre("database 2"));

    apply("[{'do': 'hold'}, {'do': 'databaseChanged', 'reason': 3}, {'do': 'drop'}]");
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(client.connect(), S_OK);
    apply("[{'do': 'release'}, {'do': 'databaseChanged', 'reason': 0}]");
    EXPECT_EQ(client.sink.waitFor(2).back(), "database 0");
}

TEST_F(NotificationTest, DisconnectDoesNotWaitForThemButUnadviseDoes) {
    std::promise<void> entered, leave;
    std::atomic<bool> left = false;
    client.sink.inside = [&](const std::string&) {
        entered.set_value();
        leave.get_future().wait();
        left = true;
    };
    send(0);
    entered.get_future().wait();
    EXPECT_EQ(client.logger->Disconnect(), S_OK);
    EXPECT_FALSE(left);

    auto unadvised = std::async(std::launch::async, [&] {
        const HRESULT hr = client.unadvise();
        EXPECT_TRUE(left);
        return hr;
    });
    EXPECT_EQ(unadvised.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    leave.set_value();
    EXPECT_EQ(unadvised.get(), S_OK);
    EXPECT_EQ(client.unadvise(), CONNECT_E_NOCONNECTION);
}

TEST_F(NotificationTest, MayDisconnectAndUnadviseFromInside) {
    std::promise<void> done;
    client.sink.inside = [&](const std::string&) {
        EXPECT_EQ(client.unadvise(), S_OK);
        EXPECT_EQ(client.logger->Disconnect(), S_OK);
        done.set_value();
    };
    apply("[{'do': 'databaseChanged', 'reason': 1}, {'do': 'databaseChanged', 'reason': 2}]");
    done.get_future().wait();
    EXPECT_FALSE(client.isConnected());

    client.sink.waitFor(1);
    client.sink.inside = nullptr;
    EXPECT_EQ(client.advise(), S_OK);
    EXPECT_EQ(client.connect(), S_OK);
    send(3);
    EXPECT_THAT(client.sink.waitFor(2), ElementsAre("database 1", "database 3"));
}

TEST_F(NotificationTest, ComeWithNoLockHeld) {
    client.sink.inside = [&](const std::string& text) {
        // From another thread: a lock that the caller holds could not stop the caller itself.
        std::async(std::launch::async, [&] {
            EXPECT_TRUE(client.isConnected());
            EXPECT_EQ(client.activeAlarms().size(), 1u);
            EXPECT_EQ(client.activeAlarms()[0]->Confirm(), text == "raised 7" ? S_OK : S_FALSE);
            EXPECT_EQ(status().at("connected"), true);
        }).wait();
    };
    apply("{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7}");
    EXPECT_THAT(client.sink.waitFor(2), ElementsAre("raised 7", "confirmed 7"));
}

TEST_F(NotificationTest, SurviveClientsThatComeAndGo) {
    std::atomic<bool> stop = false;
    std::vector<std::future<void>> clients;
    for (int i = 0; i < 3; ++i) {
        clients.push_back(std::async(std::launch::async, [&] {
            while (!stop) {
                Client visitor;
                visitor.advise();
                visitor.connect();
                visitor.activeAlarms();
                visitor.unadvise();
            }
        }));
    }
    for (int i = 0; i < 200; ++i)
        apply(
            "[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7},"
            " {'do': 'message', 'class': 'CLASS', 'event': 20}, {'do': 'clear', 'alarm': 'A'},"
            " {'do': 'confirm', 'alarm': 'A'}]");
    stop = true;
    clients.clear();
    EXPECT_EQ(client.sink.waitFor(800).size(), 800u);
    client.sink.forget();
    EXPECT_EQ(status().at("advised").to_number<int>(), 1);
    EXPECT_EQ(liveObjects(), 1);
}

}  // namespace
