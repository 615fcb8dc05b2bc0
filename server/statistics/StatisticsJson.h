#pragma once

#include <functional>

#include <boost/json/object.hpp>

#include "server/events/LocalizedEvent.h"
#include "server/statistics/StatisticsReport.h"

namespace hmi {

/// The texts of an alarm by its id; null when they are not known.
using TextsOf = std::function<TextsPtr(std::int64_t alarm)>;

boost::json::object toJson(const StatisticsReport& report, const TextsOf& textsOf);
/// The ids of the alarms whose texts that asks for.
std::vector<std::int64_t> namedAlarms(const StatisticsReport& report);

}  // namespace hmi
