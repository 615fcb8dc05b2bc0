#pragma once

#include <atomic>
#include <chrono>

namespace hmi {

/// Whether a client still waits for its answer. One who has ended his side of the connection may
/// wait, or have gone: nobody can tell, so he is believed for a while. Thread-safe.
class Presence {
public:
    using Clock = std::chrono::steady_clock;

    void hasGone() noexcept { end = Clock::time_point::min(); }
    void hasEndedItsSide() noexcept {
        auto never = Clock::time_point::max();
        end.compare_exchange_strong(never, Clock::now() + grace);
    }
    bool isOver() const noexcept { return Clock::now() >= end.load(); }

private:
    static constexpr std::chrono::seconds grace{2};

    std::atomic<Clock::time_point> end = Clock::time_point::max();
};

}  // namespace hmi
