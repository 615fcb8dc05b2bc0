#include "server/net/Connection.h"

#include <algorithm>

namespace hmi {

using Clock = std::chrono::steady_clock;

namespace {

/// A client that has taken something within this time is not one that takes nothing.
constexpr auto stalled = std::chrono::seconds(1);

}  // namespace

Connection::Connection(std::shared_ptr<Connections> list, const boost::asio::ip::address& from)
    : all(std::move(list)), peer(from), since(Clock::now()) {
    all->add(this);
}

Connection::~Connection() {
    hold(0);
    all->remove(this);
}

void Connection::enter(Phase next) noexcept {
    phase = next;
    since = Clock::now();
}

bool Connection::hold(std::size_t bytes) {
    if (bytes > held && !all->reserve(*this, bytes - held))
        return false;
    all->heldBytes += bytes - held;  // wraps round, and back
    held = bytes;
    return true;
}

Connections::Peer Connections::peerOf(const boost::asio::ip::address& address) {
    Peer peer{};
    if (address.is_v4()) {
        const auto bytes = address.to_v4().to_bytes();
        std::copy(bytes.begin(), bytes.end(), peer.end() - 4);
    } else {
        const auto bytes = address.to_v6().to_bytes();
        const bool mapped = address.to_v6().is_v4_mapped();
        std::copy_n(bytes.begin(), mapped ? 0 : 8, peer.begin());
        if (mapped)
            std::copy(bytes.end() - 4, bytes.end(), peer.end() - 4);
    }
    return peer;
}

void Connections::add(Connection* connection) {
    open.insert(connection);
    ++counts[peerOf(connection->peer)];
}

void Connections::remove(Connection* connection) {
    if (open.erase(connection) == 0)
        return;
    const auto count = counts.find(peerOf(connection->peer));
    if (--count->second == 0)
        counts.erase(count);
}

bool Connections::makeRoomFor(const Connection& added) {
    const Peer peer = peerOf(added.peer);
    if (counts[peer] > limits.perPeer &&
        !end(longest(Connection::Phase::idle, [&](Connection& candidate) {
            return &candidate != &added && peerOf(candidate.peer) == peer;
        })))
        return false;
    if (open.size() <= limits.connections)
        return true;
    return end(longest(Connection::Phase::idle,
                       [&](Connection& candidate) { return &candidate != &added; })) ||
           end(longestStalled(added));
}

bool Connections::reserve(const Connection& from, std::size_t bytes) {
    if (bytes > limits.heldBytes)
        return false;
    while (heldBytes + bytes > limits.heldBytes) {
        if (!end(longestStalled(from)))
            return false;
    }
    return true;
}

/// It counts no longer from now on, though its operations may keep it alive for a moment.
bool Connections::end(Connection* victim) {
    if (!victim)
        return false;
    remove(victim);
    victim->hold(0);
    victim->abort();
    return true;
}

Connection* Connections::longest(Connection::Phase phase,
                                 const std::function<bool(Connection&)>& among) {
    Connection* found = nullptr;
    for (Connection* const candidate : open) {
        if (candidate->phase == phase && (!found || candidate->since < found->since) &&
            among(*candidate))
            found = candidate;
    }
    return found;
}

Connection* Connections::longestStalled(const Connection& except) {
    return longest(Connection::Phase::sending, [&](Connection& candidate) {
        return &candidate != &except && Clock::now() - candidate.since > stalled;
    });
}

void Connections::closeAll() {
    const auto closing = open;
    for (Connection* const connection : closing) {
        if (open.contains(connection))
            connection->close();
    }
}

}  // namespace hmi
