#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <vector>

#include "server/events/EventOrigin.h"

namespace hmi {

using EventOriginPtr = std::shared_ptr<const EventOrigin>;

/// An alarm was raised. Alarms that differ in their times and arguments only share their origin.
struct Raise {
    ZrHmiSrv::Timestamp at;  ///< by the server's clock
    EventOriginPtr origin;
    std::int64_t alarm;  ///< its id
};

/// How often alarms were raised in a stretch of time, from wherever the raises are known. Not
/// synchronised.
class RaiseRates {
public:
    static constexpr std::int64_t second = 1'000'000'000;
    static constexpr std::int64_t period = 600 * second;  ///< of a rate

    struct Rate {
        ZrHmiSrv::Timestamp at;  ///< the period's begin
        std::size_t alarms = 0;
    };
    struct Often {
        EventOriginPtr origin;
        std::int64_t newest = 0;  ///< the alarm's id that was raised last
        std::size_t count = 0;
        std::size_t perMinute = 0;  ///< the most within any minute
    };

    /// The periods are counted back from `to`; the first one may be shorter.
    RaiseRates(ZrHmiSrv::Timestamp from, ZrHmiSrv::Timestamp to);

    /// In order of time; what lies outside is left out.
    void add(const Raise& raise);

    const std::vector<Rate>& series() const noexcept { return rates; }
    /// The most within any ten minutes.
    const Rate& peak() const noexcept { return most; }
    /// The most frequent ones, at most ten.
    std::vector<Often> frequent() const;
    /// Those that were raised three times or more within a minute, at most a hundred.
    std::vector<Often> chattering() const;

private:
    struct Kind {
        Often often;
        std::deque<std::int64_t> lastMinute;
    };
    using Count = std::size_t Often::*;
    std::vector<Often> top(Count by, std::size_t atLeast, std::size_t atMost) const;

    const ZrHmiSrv::Timestamp from;
    const ZrHmiSrv::Timestamp to;
    std::vector<Rate> rates;
    Rate most;
    std::deque<std::int64_t> lastPeriod;
    std::map<const EventOrigin*, Kind> kinds;
};

}  // namespace hmi
