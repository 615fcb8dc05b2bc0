#pragma once

#include <functional>

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

namespace hmi {

/// SIGHUP: files are to be read again. Where there is no such signal nothing happens.
class ReloadSignal {
public:
    /// `reload` is called on the I/O thread.
    ReloadSignal(boost::asio::io_context& io, std::function<void()> reload);

private:
    void wait();

    const std::function<void()> reload;
    boost::asio::signal_set signals;
};

}  // namespace hmi
