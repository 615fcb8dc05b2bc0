#pragma once

#include <chrono>
#include <future>
#include <thread>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>

namespace hmi {

/// The one thread that does all network input and output. Nothing on it waits.
class IoThread {
public:
    IoThread();
    ~IoThread() { stop(std::chrono::seconds(0)); }

    boost::asio::io_context& context() noexcept { return io; }
    /// Lets the pending operations come to their end, at most that long, and ends the thread.
    void stop(std::chrono::milliseconds patience);

private:
    boost::asio::io_context io{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work;
    std::promise<void> ended;
    std::thread thread;
};

}  // namespace hmi
