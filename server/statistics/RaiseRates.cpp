#include "server/statistics/RaiseRates.h"

#include <algorithm>

namespace hmi {

using ZrHmiSrv::Timestamp;

namespace {

/// Adds a time to those that lie within a span of each other.
void slide(std::deque<std::int64_t>& times, std::int64_t time, std::int64_t span) {
    while (!times.empty() && times.front() <= time - span)
        times.pop_front();
    times.push_back(time);
}

}  // namespace

RaiseRates::RaiseRates(Timestamp first, Timestamp last) : from(first), to(last), most{first} {
    for (std::int64_t end = to.nanoseconds(); end > from.nanoseconds(); end -= period)
        rates.push_back({Timestamp(std::max(end - period, from.nanoseconds()))});
    std::reverse(rates.begin(), rates.end());
}

void RaiseRates::add(const Raise& raise) {
    if (raise.at < from || !(raise.at < to))
        return;
    const std::int64_t time = raise.at.nanoseconds();
    const auto age = static_cast<std::size_t>((to.nanoseconds() - 1 - time) / period);
    ++rates[rates.size() - 1 - age].alarms;
    slide(lastPeriod, time, period);
    if (lastPeriod.size() > most.alarms)
        most = {Timestamp(lastPeriod.front()), lastPeriod.size()};
    Kind& kind = kinds[raise.origin.get()];
    kind.often.origin = raise.origin;
    kind.often.newest = raise.alarm;
    ++kind.often.count;
    slide(kind.lastMinute, time, 60 * second);
    kind.often.perMinute = std::max(kind.often.perMinute, kind.lastMinute.size());
}

std::vector<RaiseRates::Often> RaiseRates::frequent() const {
    return top(&Often::count, 1, 10);
}

std::vector<RaiseRates::Often> RaiseRates::chattering() const {
    return top(&Often::perMinute, 3, 100);
}

std::vector<RaiseRates::Often> RaiseRates::top(Count by, std::size_t atLeast,
                                               std::size_t atMost) const {
    std::vector<Often> all;
    for (const auto& [origin, kind] : kinds) {
        if (kind.often.*by >= atLeast)
            all.push_back(kind.often);
    }
    const auto end = all.begin() + static_cast<std::ptrdiff_t>(std::min(atMost, all.size()));
    std::partial_sort(all.begin(), end, all.end(), [by](const Often& a, const Often& b) {
        return a.*by != b.*by ? a.*by > b.*by : a.newest > b.newest;
    });
    all.erase(end, all.end());
    return all;
}

}  // namespace hmi
