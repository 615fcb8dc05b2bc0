#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace bridge_test {

/// Ends the process when it outlives the time: it prints what every thread is doing, as far as
/// the system can tell, and aborts.
class Watchdog {
public:
    explicit Watchdog(std::chrono::seconds limit);
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    void watch(std::chrono::seconds limit);

    std::mutex mutex;
    std::condition_variable changed;
    bool over = false;
    std::thread thread;
};

}  // namespace bridge_test
