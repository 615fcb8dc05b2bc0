#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <string>

#include "platform/Mutex.h"

namespace hmi {

/// Slows down those who guess passwords: ten wrong ones within a minute, from one address (of IP
/// version 6: from one /64) or for one name, block that address or name for a minute, and twice as
/// long each further time, at most an hour. Thread-safe.
class SignInLimiter {
public:
    using Clock = std::chrono::steady_clock;

    /// How long a sign-in has to wait; 0 when it may be tried.
    std::chrono::seconds wait(const std::string& peer, const std::string& name,
                              Clock::time_point now) const;
    void failed(const std::string& peer, const std::string& name, Clock::time_point now);
    /// A right password forgets the failures of its name.
    void succeeded(const std::string& name);

private:
    struct Record {
        std::deque<Clock::time_point> failures;
        Clock::time_point blockedUntil;
        std::chrono::seconds nextBlock = firstBlock;
    };
    static constexpr std::chrono::seconds firstBlock{60};
    static constexpr std::size_t maxRecords = 10'000;

    void fail(const std::string& key, Clock::time_point now) REQUIRES(mutex);
    void makeRoom(Clock::time_point now) REQUIRES(mutex);
    std::chrono::seconds waitOf(const std::string& key, Clock::time_point now) const
        REQUIRES(mutex);

    mutable Mutex mutex;  ///< guards the records
    std::map<std::string, Record> records GUARDED_BY(mutex);
};

}  // namespace hmi
