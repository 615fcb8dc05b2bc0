#pragma once

#include <deque>
#include <map>
#include <memory>
#include <string>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include "platform/Mutex.h"
#include "server/events/ChangeFeed.h"
#include "server/metrics/Metrics.h"
#include "server/net/StreamTypes.h"

namespace hmi {

using StreamLine = std::shared_ptr<const std::string>;

/// One that follows the changes. Used on the I/O thread only.
class IStreamClient {
public:
    /// False when the client has fallen too far behind to go on.
    virtual bool send(StreamLine line) = 0;
    virtual void disconnect() = 0;

protected:
    ~IStreamClient() = default;
};

/// Takes changes from any thread and brings them, in their order, to all clients on the I/O
/// thread. A client that joins gets all changes of its types from then on, or is disconnected; and
/// a sign of life when nothing happens.
class StreamHub final : public IChangeListener {
public:
    StreamHub(boost::asio::io_context& io, Metrics& metrics)
        : io(io), metrics(metrics), heartbeat(io) {}

    bool post(const Change& change) noexcept override;

    // On the I/O thread.
    void join(std::shared_ptr<IStreamClient> client, StreamTypes types);
    void leave(const IStreamClient* client);

private:
    void drain();
    std::deque<Change> takeChanges();
    void send(const Change& change);
    void beat();
    void disconnectAll();

    /// Changes that wait for the I/O thread beyond this number cost all clients their connection.
    static constexpr std::size_t maxWaiting = 200'000;

    boost::asio::io_context& io;
    Metrics& metrics;
    // I/O thread only.
    std::map<std::shared_ptr<IStreamClient>, StreamTypes> clients;
    std::uint64_t sequence = 0;  ///< of the lines
    boost::asio::steady_timer heartbeat;
    bool beating = false;

    Mutex mutex;                               ///< guards all below; short, taken last
    bool followed GUARDED_BY(mutex) = false;   ///< whether there are clients
    bool scheduled GUARDED_BY(mutex) = false;  ///< whether `drain` is going to run
    bool overflown GUARDED_BY(mutex) = false;
    std::deque<Change> waiting GUARDED_BY(mutex);
};

}  // namespace hmi
