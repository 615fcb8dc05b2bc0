#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "server/net/Connection.h"

namespace hmi {

namespace {

class Client final : public Connection {
public:
    Client(std::shared_ptr<Connections> all, const char* from)
        : Connection(std::move(all), boost::asio::ip::make_address(from)) {}

    void close() override {}
    void abort() override { ended = true; }
    void become(const char* phase) {
        enter(*phase == 'i' ? Phase::idle : *phase == 's' ? Phase::sending : Phase::busy);
    }

    bool ended = false;
};

class ConnectionsTest : public testing::Test {
protected:
    /// The newest one, and whether it may stay.
    bool come(const char* from, const char* phase = "idle") {
        clients.push_back(std::make_unique<Client>(all, from));
        const bool stays = all->makeRoomFor(*clients.back());
        clients.back()->become(phase);
        return stays;
    }
    std::string ended() const {
        std::string text;
        for (const auto& client : clients)
            text += client->ended ? 'x' : '.';
        return text;
    }

    const std::shared_ptr<Connections> all =
        std::make_shared<Connections>(Connections::Limits{4, 2, 1000});
    std::vector<std::unique_ptr<Client>> clients;
};

TEST_F(ConnectionsTest, TheLongestIdleMakesRoomForTheNext) {
    for (const char* from : {"10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4"})
        EXPECT_TRUE(come(from));
    clients[0]->become("busy");
    clients[2]->become("idle");  // again, so no longer the longest
    EXPECT_TRUE(come("10.0.0.5", "busy"));
    EXPECT_EQ(ended(), ".x...");
    EXPECT_TRUE(come("10.0.0.6", "busy"));
    EXPECT_EQ(ended(), ".x.x..");
    EXPECT_TRUE(come("10.0.0.7", "busy"));
    EXPECT_EQ(ended(), ".xxx...");
    EXPECT_FALSE(come("10.0.0.8")) << "all others are at work";
    EXPECT_EQ(ended(), ".xxx....");
}

TEST_F(ConnectionsTest, AnAddressHasItsShareOnly) {
    EXPECT_TRUE(come("2001:db8::1"));
    EXPECT_TRUE(come("2001:db8::2", "busy"));
    EXPECT_TRUE(come("2001:db8::3", "busy")) << "of the same network";
    EXPECT_EQ(ended(), "x..");
    EXPECT_FALSE(come("2001:db8::4"));
    clients.pop_back();
    EXPECT_TRUE(come("2001:db8:0:1::1"));
    EXPECT_TRUE(come("::ffff:10.0.0.1", "busy"));
    clients.erase(clients.begin() + 1, clients.end() - 1);
    EXPECT_TRUE(come("10.0.0.1", "busy"));
    EXPECT_FALSE(come("10.0.0.1")) << "however it is written";
    clients.clear();
    EXPECT_TRUE(come("10.0.0.1"));
}

}  // namespace

}  // namespace hmi
