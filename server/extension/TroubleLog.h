#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include "host/Event.h"
#include "platform/Mutex.h"

namespace hmi {

/// Tells people of the state of target systems, once for each change. A runtime that cannot be
/// reached is reported twice a second: the same report is written again after a minute at the
/// earliest, with the number of those between. Thread-safe.
class TroubleLog {
public:
    using Clock = std::chrono::steady_clock;

    /// False for a repeated report, which need not be kept. One that stands for others gets their
    /// number as its parameter "repeated".
    bool pass(ZrHmiSrv::Message& message, Clock::time_point now = Clock::now());

private:
    struct Report {
        Clock::time_point written;
        std::uint64_t repeated = 0;
    };
    using Reports = std::map<std::string, Report>;  ///< by what they say

    std::uint64_t forget(const std::string& target);

    Mutex mutex;  ///< guards the reports; nothing is called under it
    std::map<std::string, Reports> targets GUARDED_BY(mutex);
};

}  // namespace hmi
