#pragma once

#include <array>
#include <deque>
#include <memory>
#include <set>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include "platform/Mutex.h"
#include "server/events/ChangeFeed.h"
#include "server/metrics/Metrics.h"
#include "server/net/StreamLines.h"

namespace hmi {

/// One that follows the changes. Used on the I/O thread only.
class IStreamClient {
public:
    /// There may be lines that it has not been given.
    virtual void wake() = 0;
    /// Of the next line that it asks for.
    virtual StreamLines::Position position() const = 0;
    /// How much of each event it wants; does not change.
    virtual Extent extent() const = 0;
    virtual void disconnect() = 0;

protected:
    ~IStreamClient() = default;
};

/// Takes changes from any thread and brings them, in their order, to all clients on the I/O
/// thread. A client that joins can have all changes from then on, or is disconnected; and a sign of
/// life when nothing happens.
class StreamHub final : public IChangeListener {
public:
    StreamHub(boost::asio::io_context& io, Metrics& metrics)
        : io(io), metrics(metrics), heartbeat(io) {}

    bool post(const Change& change) noexcept override;

    // On the I/O thread.
    /// Answers where the client is to begin.
    StreamLines::Position join(std::shared_ptr<IStreamClient> client);
    void leave(const IStreamClient* client);
    const StreamLines& lines() const noexcept { return recent; }

private:
    void drain();
    std::deque<Change> takeChanges();
    StreamLineTexts textsOf(const Change& change) const;
    std::size_t& followersOf(Extent extent) { return followers[static_cast<std::size_t>(extent)]; }
    void deliver();
    void beat();
    void disconnectAll();

    /// Changes that wait for the I/O thread beyond this number cost all clients their connection.
    static constexpr std::size_t maxWaiting = 200'000;
    /// What all clients together have still to be sent; who is further behind is too slow.
    static constexpr std::size_t maxBytes = 32 << 20;

    boost::asio::io_context& io;
    Metrics& metrics;
    // I/O thread only.
    std::set<std::shared_ptr<IStreamClient>> clients;
    std::array<std::size_t, 2> followers{};  ///< of these, by extent
    StreamLines recent{maxBytes};
    boost::asio::steady_timer heartbeat;
    bool beating = false;

    Mutex mutex;                               ///< guards all below; short, taken last
    bool followed GUARDED_BY(mutex) = false;   ///< whether there are clients
    bool scheduled GUARDED_BY(mutex) = false;  ///< whether `drain` is going to run
    bool overflown GUARDED_BY(mutex) = false;
    std::deque<Change> waiting GUARDED_BY(mutex);
};

}  // namespace hmi
