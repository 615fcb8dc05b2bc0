#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "server/StartError.h"
#include "server/http/ClientAddress.h"
#include "server/net/Connection.h"
#include "server/net/StreamFrames.h"

namespace hmi {

namespace {

class Client final : public Connection {
public:
    Client(std::shared_ptr<Connections> all, const std::string& from)
        : Connection(std::move(all), boost::asio::ip::make_address(from)) {}

    void close() override {}
    void abort() override { ended = true; }
    void become(const char* phase) {
        const std::map<std::string, Phase> phases{{"idle", Phase::idle},
                                                  {"receiving", Phase::receiving},
                                                  {"busy", Phase::serving},
                                                  {"sending", Phase::sending},
                                                  {"following", Phase::following}};
        enter(phases.at(phase));
    }
    bool holds(std::size_t bytes) { return hold(bytes); }

    bool ended = false;
};

class ConnectionsTest : public testing::Test {
protected:
    /// The newest one, and whether it may stay.
    bool come(const std::string& from, const char* phase = "idle") {
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

    const std::shared_ptr<Connections> all = std::make_shared<Connections>(
        Connections::Limits{4, 2, 2, 1, 1000, std::chrono::milliseconds(0)},
        [](const auto& peer) { return peer.to_string() == "10.0.0.99"; });
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
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(come("10.0.0.99", "busy")) << "a proxy speaks for many";
}

TEST_F(ConnectionsTest, RequestsThatOnlyArriveAndFollowersLockNobodyOut) {
    for (const char* from : {"10.0.0.1", "10.0.0.2", "10.0.0.3"})
        EXPECT_TRUE(come(from, "receiving"));
    EXPECT_TRUE(come("10.0.0.4", "sending"));
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(come("10.0.1." + std::to_string(i), "receiving"));
    EXPECT_EQ(ended(), "xx.x...") << "who takes nothing, then the oldest requests";
    clients.clear();
    const auto mayFollow = [&](const char* from) {
        return all->mayFollow(boost::asio::ip::make_address(from));
    };
    come("2001:db8::1", "following");
    EXPECT_FALSE(mayFollow("2001:db8::2"));
    EXPECT_TRUE(mayFollow("10.0.0.1"));
    come("10.0.0.1", "following");
    EXPECT_FALSE(mayFollow("10.0.0.2")) << "enough in all";
}

TEST_F(ConnectionsTest, MemoryGoesToThoseWhoGetOn) {
    for (const char* from : {"10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4"})
        come(from, "receiving");
    EXPECT_TRUE(clients[0]->holds(400) && clients[1]->holds(400));
    EXPECT_TRUE(clients[2]->holds(150));
    clients[2]->become("busy");
    clients[1]->become("sending");
    EXPECT_FALSE(clients[3]->holds(1001)) << "more than there is";
    EXPECT_EQ(ended(), "....");
    EXPECT_TRUE(clients[3]->holds(200));
    EXPECT_EQ(ended(), ".x..") << "who takes nothing";
    EXPECT_TRUE(clients[3]->holds(600));
    EXPECT_EQ(ended(), "xx..") << "whose request does not end";
    EXPECT_FALSE(clients[3]->holds(900)) << "the rest is being served";
    clients.erase(clients.begin() + 2);
    EXPECT_TRUE(clients[2]->holds(900));
}

TEST(StreamLines, AreKeptOnceAndOfTheirTypes) {
    StreamLines lines(1000);
    const StreamWish types = *StreamWish::parse("/api/stream?types=raised");
    const auto same = [](std::string text) -> StreamLineTexts {
        const auto line = std::make_shared<const std::string>(std::move(text));
        return {line, line};
    };
    StreamLines::Position quick = lines.end();
    StreamLines::Position slow = quick;
    for (int i = 0; i < 10; ++i) {
        lines.add(i % 2 == 0 ? ChangeType::raised : ChangeType::log, same(std::string(100, 'x')));
        EXPECT_EQ(lines.next(quick, types) != nullptr, i % 2 == 0);
    }
    EXPECT_EQ(quick, lines.end());
    EXPECT_EQ(lines.next(slow, types), nullptr);
    EXPECT_LT(slow, lines.begin()) << "it has lost its place";
    lines.add(ChangeType::alive, same("y"));
    EXPECT_EQ(*lines.next(quick, types), "y") << "of every type";
    lines.dropBefore(quick);
    EXPECT_EQ(lines.begin(), lines.end());
}

/// The payloads of unmasked text frames, one behind the other.
std::vector<std::string> payloadsOf(std::string bytes) {
    std::vector<std::string> payloads;
    while (!bytes.empty()) {
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes.at(at)); };
        EXPECT_EQ(byte(0), 0x81);
        const std::size_t further = byte(1) < 126 ? 0 : byte(1) == 126 ? 2 : 8;
        std::size_t size = further == 0 ? byte(1) : 0;
        for (std::size_t i = 0; i < further; ++i)
            size = size << 8 | byte(2 + i);
        payloads.push_back(bytes.substr(2 + further, size));
        bytes.erase(0, 2 + further + size);
    }
    return payloads;
}

TEST(StreamFrames, HoldLinesOfAnyLength) {
    StreamFrames frames;
    std::vector<std::string> expected;
    for (const std::size_t size : {1U, 115U, 117U, 2000U, 70'000U}) {
        EXPECT_FALSE(frames.isFull());
        const std::string text(size, 'x');
        frames.add(expected.size(), std::make_shared<const std::string>("{" + text));
        expected.push_back("{\"seq\":" + std::to_string(expected.size()) + "," + text);
    }
    EXPECT_TRUE(frames.isFull());
    std::string bytes;
    for (const auto& buffer : frames.buffers())
        bytes.append(static_cast<const char*>(buffer.data()), buffer.size());
    EXPECT_EQ(payloadsOf(bytes), expected);
    frames.clear();
    EXPECT_TRUE(frames.buffers().empty());
}

TEST(TrustedProxies, NameTheClientThatNobodyElseCanName) {
    const TrustedProxies proxies({"10.0.0.1", "2001:db8::1"});
    const auto clientOf = [&](const char* peer, const char* forwarded) {
        return proxies.clientOf(boost::asio::ip::make_address(peer), forwarded).to_string();
    };
    EXPECT_EQ(clientOf("10.0.0.2", "1.1.1.1"), "10.0.0.2") << "nobody trusts it";
    EXPECT_EQ(clientOf("::ffff:10.0.0.1", "6.6.6.6, 1.1.1.1"), "1.1.1.1") << "not what it claims";
    EXPECT_EQ(clientOf("10.0.0.1", "1.1.1.1 ,[2001:db8::1]:99"), "1.1.1.1");
    EXPECT_EQ(clientOf("10.0.0.1", "2.2.2.2:80"), "2.2.2.2");
    for (const char* nothing : {"", ",", "unknown", "1.1.1.1, _hidden", "["})
        EXPECT_EQ(clientOf("10.0.0.1", nothing), "10.0.0.1");
    const auto peer = boost::asio::ip::make_address("10.0.0.2");
    EXPECT_FALSE(proxies.isUnderTls(peer, "https").has_value()) << "nobody trusts it";
    EXPECT_THROW(TrustedProxies({"10.0.0.0/8"}), StartError);
}

}  // namespace

}  // namespace hmi
