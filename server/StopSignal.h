#pragma once

#include <future>

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

namespace hmi {

/// The request of a person or the system to stop. A second one ends the process at once.
class StopSignal {
public:
    explicit StopSignal(boost::asio::io_context& io);
    void wait() { received.get_future().wait(); }

private:
    boost::asio::signal_set signals;
    std::promise<void> received;
};

}  // namespace hmi
