#include "server/net/Connection.h"

#include <algorithm>

#include "server/http/ClientAddress.h"

namespace hmi {

using Clock = std::chrono::steady_clock;

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

void Connections::add(Connection* connection) {
    open.insert(connection);
    ++counts[networkOf(connection->peer)];
}

void Connections::remove(Connection* connection) {
    if (open.erase(connection) == 0)
        return;
    const auto count = counts.find(networkOf(connection->peer));
    if (--count->second == 0)
        counts.erase(count);
}

bool Connections::makeRoomFor(const Connection& added) {
    const Address network = networkOf(added.peer);
    if (counts[network] > limits.perPeer && !isTrusted(added.peer) &&
        !end(leastUseful([&](const Connection& candidate) {
            return &candidate != &added && networkOf(candidate.peer) == network;
        })))
        return false;
    return open.size() <= limits.connections ||
           end(leastUseful([&](const Connection& candidate) { return &candidate != &added; }));
}

bool Connections::mayFollow(const Address& client) const {
    const Address network = networkOf(client);
    std::size_t followers = 0;
    std::size_t ofClient = 0;
    for (const Connection* const connection : open) {
        if (connection->phase != Phase::following)
            continue;
        ++followers;
        ofClient += networkOf(connection->peer) == network ? 1U : 0U;
    }
    return followers < limits.followers && ofClient < limits.followersPerPeer;
}

bool Connections::reserve(const Connection& from, std::size_t bytes) {
    if (bytes > limits.heldBytes)
        return false;
    const auto helps = [&](const Connection& candidate) {
        return &candidate != &from && candidate.held > 0 && isSlow(candidate);
    };
    while (heldBytes + bytes > limits.heldBytes) {
        Connection* const sender = longest(Phase::sending, helps);
        if (!end(sender ? sender : longest(Phase::receiving, helps)))
            return false;
    }
    return true;
}

bool Connections::isSlow(const Connection& connection) const {
    return Clock::now() - connection.since > limits.patience;
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

Connection* Connections::longest(Phase phase, const Condition& among) const {
    Connection* found = nullptr;
    for (Connection* const candidate : open) {
        if (candidate->phase == phase && (!found || candidate->since < found->since) &&
            among(*candidate))
            found = candidate;
    }
    return found;
}

/// Null when the server is at work for all of them.
Connection* Connections::leastUseful(const Condition& among) const {
    if (Connection* const idle = longest(Phase::idle, among))
        return idle;
    Connection* const stalled = longest(Phase::sending, [&](const Connection& candidate) {
        return isSlow(candidate) && among(candidate);
    });
    return stalled ? stalled : longest(Phase::receiving, among);
}

void Connections::closeAll() {
    const auto closing = open;
    for (Connection* const connection : closing) {
        if (open.contains(connection))
            connection->close();
    }
}

}  // namespace hmi
