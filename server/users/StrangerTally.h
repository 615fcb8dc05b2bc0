#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/Mutex.h"

namespace hmi {

/// Keeps those who have not signed in from filling what is kept of refusals: of one network and of
/// one name the first five within a minute are told, of the others how many they were. Beyond fifty
/// networks and names the rest count as one. Thread-safe.
class StrangerTally {
public:
    using Clock = std::chrono::steady_clock;

    /// Refusals that were not told.
    struct Rest {
        std::string network;  ///< empty: that is not what they have in common
        std::string user;     ///< the name that they gave; empty likewise
        std::uint64_t count = 0;
        unsigned status = 0;  ///< of the last
    };

    /// Counts a refusal. True when it is to be told. `user` is empty where no name was given.
    bool isTold(const std::string& peer, const std::string& user, unsigned status,
                Clock::time_point now);
    /// Of the minutes that are over, each once. Costs nothing where there is none.
    std::vector<Rest> takeRests(Clock::time_point now);

private:
    using Key = std::pair<std::string, std::string>;  ///< network and name, one of them empty
    struct Record {
        Clock::time_point end;
        unsigned told = 0;
        std::uint64_t untold = 0;
        unsigned status = 0;
    };

    Record& recordOf(Key key, Clock::time_point now) REQUIRES(mutex);

    std::atomic<Clock::time_point> firstEnd = Clock::time_point::max();
    Mutex mutex;  ///< guards the records
    std::map<Key, Record> records GUARDED_BY(mutex);
};

}  // namespace hmi
