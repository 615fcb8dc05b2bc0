#include "server/statistics/StatisticsReport.h"

#include <limits>

namespace hmi {

using ZrHmiSrv::Timestamp;

namespace {

constexpr std::size_t maxStanding = 100;  ///< that are named, of one target system or of all

Timestamp before(Timestamp time, std::chrono::nanoseconds span) {
    return Timestamp(time.nanoseconds() - span.count());
}

}  // namespace

StatisticsReport::StatisticsReport(std::chrono::minutes length, Timestamp now,
                                   const RaiseBook& raises, const EventBook& events,
                                   const TargetBook& targetBook)
    : from(before(now, length)), to(now), all(from, to) {
    const RaiseBook::Excerpt excerpt = raises.select(from);
    since = excerpt.since;
    for (const Raise& raise : excerpt.raises) {
        all.rates.add(raise);
        of(raise.origin->target).rates.add(raise);
    }
    for (const auto& target : targetBook.all())
        of(target->name);
    addStanding(events);
    all.attention = events.attention({}, true);
    all.gaps = targetBook.gaps({}, from, to);
    all.flood = raises.isFlooded(now);
    for (auto& [name, part] : targets) {
        part.attention = events.attention(name, true);
        part.gaps = targetBook.gaps(name, from, to);
        part.flood = raises.isFlooded(name, now);
    }
}

StatisticsPart& StatisticsReport::of(const std::string& target) {
    return targets.try_emplace(target, from, to).first->second;
}

void StatisticsReport::addStanding(const EventBook& events) {
    EventFilter filter;
    filter.state = EventState::active;
    filter.to = before(to, std::chrono::hours(24));
    filter.reversed = true;
    const auto add = [](StatisticsPart& part, const EventRecordPtr& event) {
        if (part.standing.size() < maxStanding)
            part.standing.push_back(event);
    };
    constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();
    for (const EventRecordPtr& event : events.select(filter, 0, unlimited).events) {
        add(all, event);
        add(of(event->target), event);
    }
}

}  // namespace hmi
