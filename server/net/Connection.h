#pragma once

#include <array>
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
        idle,      ///< no request has begun to arrive
        busy,      ///< receives or serves a request, or follows the stream
        sending,   ///< the client is to take an answer
    };
    /// Also notes that something has moved.
    void enter(Phase next) noexcept;
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
        std::size_t heldBytes = 64 << 20;
    };
    explicit Connections(Limits limits) : limits(limits) {}

    /// Whether a connection that was just added may stay. Another goes for it where there are too
    /// many: the one that is idle for the longest, or whose client takes nothing for the longest.
    bool makeRoomFor(const Connection& added);
    void closeAll();

private:
    friend class Connection;
    using Peer = std::array<unsigned char, 16>;
    static Peer peerOf(const boost::asio::ip::address& address);

    void add(Connection* connection);
    void remove(Connection* connection);
    bool reserve(const Connection& from, std::size_t bytes);
    bool end(Connection* victim);
    Connection* longest(Connection::Phase phase, const std::function<bool(Connection&)>& among);
    Connection* longestStalled(const Connection& except);

    const Limits limits;
    std::set<Connection*> open;
    std::map<Peer, std::size_t> counts;
    std::size_t heldBytes = 0;
};

}  // namespace hmi
