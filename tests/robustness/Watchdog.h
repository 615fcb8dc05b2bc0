#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <thread>

namespace bridge_test {

/// Ends the process, with a core dump where the system writes one, when it outlives the time.
class Watchdog {
public:
    explicit Watchdog(std::chrono::seconds limit) : thread([this, limit] { watch(limit); }) {}
    ~Watchdog() {
        {
            const std::lock_guard lock(mutex);
            over = true;
        }
        changed.notify_all();
        thread.join();
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    void watch(std::chrono::seconds limit) {
        std::unique_lock lock(mutex);
        if (changed.wait_for(lock, limit, [this] { return over; }))
            return;
        std::cerr << "hangs for " << limit.count() << " s" << std::endl;
        std::abort();
    }

    std::mutex mutex;
    std::condition_variable changed;
    bool over = false;
    std::thread thread;
};

}  // namespace bridge_test
