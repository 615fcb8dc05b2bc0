#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <thread>

#include "platform/Mutex.h"
#include "server/events/EventId.h"

namespace hmi {

/// Tells when the time of a confirmation is up, on a thread of its own. Thread-safe.
class ConfirmationDeadlines {
public:
    using Clock = std::chrono::steady_clock;
    using Expire = std::function<void(EventId id, std::uint64_t number)>;

    /// `expire` is called with no lock held.
    explicit ConfirmationDeadlines(Expire expire);
    ~ConfirmationDeadlines();

    /// False when too many are waited for already.
    bool add(EventId id, std::uint64_t number, Clock::time_point end);

private:
    struct Awaited {
        EventId id;
        std::uint64_t number;
    };
    void run();

    static constexpr std::size_t maxAwaited = 100'000;

    const Expire expire;
    Mutex mutex;  ///< guards what stands below
    std::condition_variable_any changed;
    std::multimap<Clock::time_point, Awaited> awaited GUARDED_BY(mutex);
    bool stopping GUARDED_BY(mutex) = false;
    std::thread thread;
};

}  // namespace hmi
