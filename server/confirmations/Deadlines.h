#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <thread>

#include "platform/Mutex.h"

namespace hmi {

/// Tells whose time is up, on a thread of its own. What is still awaited at the end is not told.
/// Thread-safe.
class Deadlines {
public:
    using Clock = std::chrono::steady_clock;

    Deadlines();
    ~Deadlines();

    /// `expire` is called with no lock held and throws nothing. False when too many are waited for
    /// already.
    bool add(Clock::time_point end, std::function<void()> expire);

private:
    void run();

    static constexpr std::size_t maxAwaited = 100'000;

    Mutex mutex;  ///< guards what stands below
    std::condition_variable_any changed;
    std::multimap<Clock::time_point, std::function<void()>> awaited GUARDED_BY(mutex);
    bool stopping GUARDED_BY(mutex) = false;
    std::thread thread;
};

}  // namespace hmi
