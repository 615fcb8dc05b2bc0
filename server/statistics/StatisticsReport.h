#pragma once

#include <chrono>
#include <map>
#include <string>
#include <vector>

#include "server/events/EventBook.h"
#include "server/statistics/RaiseBook.h"
#include "server/targets/TargetBook.h"

namespace hmi {

/// How the alarms of one target system, or of all, have behaved.
struct StatisticsPart {
    StatisticsPart(ZrHmiSrv::Timestamp from, ZrHmiSrv::Timestamp to) : rates(from, to) {}

    RaiseRates rates;
    Attention attention;
    std::vector<EventRecordPtr> standing;  ///< active for longer than a day, the oldest first
    std::vector<GapPtr> gaps;
    bool flood = false;
};

/// The statistics of a stretch of time that ends now.
struct StatisticsReport {
    /// Made of what is known of the raises, and of what stands in the list.
    StatisticsReport(std::chrono::minutes length, ZrHmiSrv::Timestamp now, const RaiseBook& raises,
                     const EventBook& events, const TargetBook& targetBook);

    const ZrHmiSrv::Timestamp from;
    const ZrHmiSrv::Timestamp to;
    ZrHmiSrv::Timestamp since;  ///< raises are known from then on
    StatisticsPart all;
    std::map<std::string, StatisticsPart> targets;

private:
    StatisticsPart& of(const std::string& target);
    void addStanding(const EventBook& events);
};

}  // namespace hmi
