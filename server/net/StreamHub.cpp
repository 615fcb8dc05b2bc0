#include "server/net/StreamHub.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>
#include <vector>

#include <boost/asio/post.hpp>

#include "server/Log.h"
#include "server/json/EventJson.h"

namespace hmi {

bool StreamHub::post(const Change& change) noexcept {
    Lock lock(mutex);
    if (!followed)
        return true;
    try {
        if (waiting.size() < maxWaiting)
            waiting.push_back(change);
        else
            overflown = true;
        if (!scheduled)
            boost::asio::post(io, [this] { drain(); });
        scheduled = true;
    } catch (const std::exception&) {
        overflown = true;
    }
    return !overflown;
}

StreamLines::Position StreamHub::join(std::shared_ptr<IStreamClient> client) {
    const Extent extent = client->extent();
    if (clients.insert(std::move(client)).second) {
        metrics.countStreamClients(1);
        ++followersOf(extent);
    }
    if (!beating)
        beat();
    Lock lock(mutex);
    followed = true;
    return recent.end();
}

void StreamHub::leave(const IStreamClient* client) {
    const auto found = std::find_if(clients.begin(), clients.end(), [&](const auto& joined) {
        return joined.get() == client;
    });
    if (found == clients.end())
        return;
    --followersOf(client->extent());
    clients.erase(found);
    metrics.countStreamClients(-1);
    if (clients.empty())
        recent.dropBefore(recent.end());
    Lock lock(mutex);
    followed = !clients.empty();
}

/// Some of the changes that wait; more of them get their turn after other work of the I/O thread.
std::deque<Change> StreamHub::takeChanges() {
    constexpr std::size_t portion = 256;
    Lock lock(mutex);
    scheduled = false;
    if (std::exchange(overflown, false)) {
        waiting.clear();
        lock.unlock();
        disconnectAll();
        return {};
    }
    if (waiting.size() <= portion)
        return std::exchange(waiting, {});
    scheduled = true;
    boost::asio::post(io, [this] { drain(); });
    const auto end = waiting.begin() + portion;
    std::deque<Change> taken(std::make_move_iterator(waiting.begin()),
                             std::make_move_iterator(end));
    waiting.erase(waiting.begin(), end);
    return taken;
}

void StreamHub::drain() {
    for (const Change& change : takeChanges())
        recent.add(change.type, textsOf(change));
    deliver();
}

/// In the extents that clients want now: one that joins begins with a later line.
StreamLineTexts StreamHub::textsOf(const Change& change) const {
    const auto [whole, brief] = followers;
    const auto lineOf = [&](Extent extent) {
        std::string text = toLine(change, extent);
        text.shrink_to_fit();  // what counts is what it takes
        return std::make_shared<const std::string>(std::move(text));
    };
    if (!change.event) {
        const StreamLine line = lineOf(Extent::whole);
        return {line, line};
    }
    return {whole > 0 ? lineOf(Extent::whole) : nullptr, brief > 0 ? lineOf(Extent::brief) : nullptr};
}

/// Each client takes its lines as fast as it can; what all have taken goes.
void StreamHub::deliver() {
    StreamLines::Position taken = recent.end();
    // A client that is disconnected leaves meanwhile.
    const std::vector receivers(clients.begin(), clients.end());
    for (const auto& client : receivers) {
        if (client->position() < recent.begin()) {
            log(LogLevel::warning, "a client of the stream was too slow");
            metrics.countSlowClient();
            client->disconnect();
            continue;
        }
        client->wake();
        taken = std::min(taken, client->position());
    }
    recent.dropBefore(taken);
}

/// As long as there are clients.
void StreamHub::beat() {
    constexpr std::chrono::seconds interval{4};
    beating = !clients.empty();
    if (!beating)
        return;
    heartbeat.expires_after(interval);
    heartbeat.async_wait([this](const boost::system::error_code& error) {
        if (error)
            return;
        recent.add(ChangeType::alive, textsOf({.type = ChangeType::alive}));
        deliver();
        beat();
    });
}

void StreamHub::disconnectAll() {
    const auto receivers = clients;
    for (const auto& client : receivers) {
        metrics.countSlowClient();
        client->disconnect();
    }
}

}  // namespace hmi
