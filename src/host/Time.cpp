#include "host/Time.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace ZrHmiSrv {

namespace {

using Limits = std::numeric_limits<std::int64_t>;

constexpr std::int64_t nanosecondsPerMillisecond = 1'000'000;
constexpr std::int64_t nanosecondsPerTick = 100;
/// 1970-01-01 as a file time.
constexpr std::int64_t epochTicks = 116'444'736'000'000'000;

std::int64_t saturating_multiply(std::int64_t count, std::int64_t factor) noexcept {
    if (count > Limits::max() / factor)
        return Limits::max();
    if (count < Limits::min() / factor)
        return Limits::min();
    return count * factor;
}

}  // namespace

Timestamp Timestamp::now() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return Timestamp(std::chrono::nanoseconds(sinceEpoch).count());
}

Timestamp Timestamp::from_file_time(long long file_time) noexcept {
    if (file_time == 0)
        return {};
    const std::int64_t representable =
        std::max<std::int64_t>(file_time, Limits::min() + epochTicks);
    return Timestamp(saturating_multiply(representable - epochTicks, nanosecondsPerTick));
}

Timestamp Timestamp::from_milliseconds(std::int64_t milliseconds) noexcept {
    return Timestamp(saturating_multiply(milliseconds, nanosecondsPerMillisecond));
}

Timespan Timespan::from_milliseconds(std::int64_t milliseconds) noexcept {
    return Timespan(saturating_multiply(milliseconds, nanosecondsPerMillisecond));
}

}  // namespace ZrHmiSrv
