#pragma once

#include <deque>
#include <memory>
#include <set>
#include <string>

#include <boost/asio/io_context.hpp>

#include "platform/Mutex.h"
#include "server/events/ChangeFeed.h"
#include "server/metrics/Metrics.h"

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
/// thread. A client that joins gets all changes from then on, or is disconnected.
class StreamHub final : public IChangeListener {
public:
    StreamHub(boost::asio::io_context& io, Metrics& metrics) : io(io), metrics(metrics) {}

    bool post(const Change& change) noexcept override;

    // On the I/O thread.
    void join(std::shared_ptr<IStreamClient> client);
    void leave(const IStreamClient* client);

private:
    void drain();
    std::deque<Change> takeChanges();
    void send(const StreamLine& line);
    void disconnectAll();

    /// Changes that wait for the I/O thread beyond this number cost all clients their connection.
    static constexpr std::size_t maxWaiting = 200'000;

    boost::asio::io_context& io;
    Metrics& metrics;
    std::set<std::shared_ptr<IStreamClient>> clients;  // I/O thread only
    Mutex mutex;                                       ///< guards all below; short, taken last
    bool followed GUARDED_BY(mutex) = false;           ///< whether there are clients
    bool scheduled GUARDED_BY(mutex) = false;          ///< whether `drain` is going to run
    bool overflown GUARDED_BY(mutex) = false;
    std::deque<Change> waiting GUARDED_BY(mutex);
};

}  // namespace hmi
