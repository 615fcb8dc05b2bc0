#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>

#include <boost/asio/ip/address.hpp>

namespace hmi {

class Connections;

/// A connection of a client; it is in the list for as long as it lives. An operation that is cut
/// off at the end is destroyed, with its connection, after the server: so it keeps the list alive.
/// Used on the I/O thread only.
class Connection {
public:
    Connection(std::shared_ptr<Connections> all, const boost::asio::ip::address& peer);
    virtual ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Ends the connection as soon as a running request is answered.
    virtual void close() = 0;
    /// Ends it at once.
    virtual void abort() = 0;

protected:
    enum class Phase : std::uint8_t {
        idle,       ///< no request has begun to arrive
        receiving,  ///< one has, and is not complete
        serving,    ///< the server is at work
        sending,    ///< the client is to take an answer
        following,  ///< the client is told changes for as long as it likes
    };
    /// Also notes the time: of a request its beginning, of an answer that something has moved.
    void enter(Phase next) noexcept;
    bool isIn(Phase which) const noexcept { return phase == which; }
    /// The memory that the connection holds for its client from now on. False, with nothing
    /// changed, when all connections together would hold too much.
    bool hold(std::size_t bytes);

    const std::shared_ptr<Connections> all;
    const boost::asio::ip::address peer;

private:
    friend class Connections;
    Phase phase = Phase::idle;
    std::chrono::steady_clock::time_point since;
    std::size_t held = 0;
};

/// The connections that are open, and what they may use together. On the I/O thread only.
class Connections {
public:
    struct Limits {
        std::size_t connections = 4096;
        std::size_t perPeer = 1024;  ///< for each address; of IP version 6 for each /64
        std::size_t followers = 1024;
        std::size_t followersPerPeer = 256;
        std::size_t heldBytes = 64 << 20;
        /// Who has taken something, or begun with a request, within this time is not slow.
        std::chrono::milliseconds patience{1000};
    };
    using Address = boost::asio::ip::address;
    /// A trusted peer speaks for many, and may have as many connections as there are.
    Connections(Limits limits, std::function<bool(const Address&)> isTrusted)
        : limits(limits), isTrusted(std::move(isTrusted)) {}

    /// Whether a connection that was just added may stay. Another goes for it where there are too
    /// many: the one that is idle for the longest, else whose client takes nothing for the
    /// longest, else whose request has been arriving for the longest.
    bool makeRoomFor(const Connection& added);
    /// Whether one more of this client may follow the changes. Followers are never sent away for
    /// others, so they get a part of the connections only.
    bool mayFollow(const Address& client) const;
    void closeAll();

private:
    friend class Connection;
    using Phase = Connection::Phase;
    using Condition = std::function<bool(const Connection&)>;

    void add(Connection* connection);
    void remove(Connection* connection);
    bool reserve(const Connection& from, std::size_t bytes);
    bool isSlow(const Connection& connection) const;
    bool end(Connection* victim);
    Connection* longest(Phase phase, const Condition& among) const;
    Connection* leastUseful(const Condition& among) const;

    const Limits limits;
    const std::function<bool(const Address&)> isTrusted;
    std::set<Connection*> open;
    std::map<Address, std::size_t> counts;  ///< by network
    std::size_t heldBytes = 0;
};

}  // namespace hmi
