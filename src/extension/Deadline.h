#pragma once

#include <algorithm>
#include <chrono>

#include "host/Time.h"

namespace ZrHmiEventLogger {

/// The end of a wait that takes at most one configured time-out, but long enough for what does not
/// hang, and no longer than a day.
inline std::chrono::steady_clock::time_point deadlineAfter(ZrHmiSrv::Timespan timeout) {
    using namespace std::chrono;
    constexpr nanoseconds shortest = milliseconds(100);
    constexpr nanoseconds longest = hours(24);
    return steady_clock::now() +
           std::clamp(nanoseconds(timeout.nanoseconds()), shortest, longest);
}

}  // namespace ZrHmiEventLogger
