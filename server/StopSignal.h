#pragma once

#include <condition_variable>

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

#include "platform/Mutex.h"

namespace hmi {

/// The request of a person or the system to stop. A second one ends the process at once, with the
/// code of an orderly end.
class StopSignal {
public:
    explicit StopSignal(boost::asio::io_context& io);

    /// Returns when the process is to stop: true; or when somebody woke it: false.
    bool wait();
    /// Any thread.
    void wake();

private:
    void onSignal();

    Mutex mutex;  ///< guards the two flags; nothing is called under it
    std::condition_variable_any changed;
    bool received GUARDED_BY(mutex) = false;
    bool woken GUARDED_BY(mutex) = false;
    boost::asio::signal_set signals;  // first to go: its callback uses what stands above
};

}  // namespace hmi
