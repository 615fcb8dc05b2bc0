#pragma once

#include <compare>
#include <cstdint>

#include "host/Export.h"

namespace ZrHmiSrv {

/// A point in time: nanoseconds since 1970-01-01 UTC. 0 means "not set", and so does the file
/// time 0. What 64 bits cannot hold saturates.
class ZRHMISRV_API Timestamp {
public:
    constexpr Timestamp() noexcept = default;
    constexpr explicit Timestamp(std::int64_t nanoseconds) noexcept : ns(nanoseconds) {}

    static Timestamp now();
    /// 100 ns units since 1601-01-01 UTC.
    static Timestamp from_file_time(long long file_time) noexcept;
    static Timestamp from_milliseconds(std::int64_t milliseconds) noexcept;

    constexpr std::int64_t seconds() const noexcept { return ns / 1'000'000'000; }
    constexpr std::int64_t nanoseconds() const noexcept { return ns; }
    constexpr bool isset() const noexcept { return ns != 0; }
    friend constexpr auto operator<=>(Timestamp, Timestamp) noexcept = default;

private:
    std::int64_t ns = 0;
};

/// A length of time, in nanoseconds.
class ZRHMISRV_API Timespan {
public:
    constexpr Timespan() noexcept = default;
    constexpr explicit Timespan(std::int64_t nanoseconds) noexcept : ns(nanoseconds) {}
    static Timespan from_milliseconds(std::int64_t milliseconds) noexcept;

    /// Truncated towards zero.
    constexpr std::int64_t milliseconds() const noexcept { return ns / 1'000'000; }
    constexpr std::int64_t nanoseconds() const noexcept { return ns; }
    friend constexpr auto operator<=>(Timespan, Timespan) noexcept = default;

private:
    std::int64_t ns = 0;
};

}  // namespace ZrHmiSrv
