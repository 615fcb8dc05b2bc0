#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <boost/json/object.hpp>

#include "server/api/EventSearch.h"
#include "server/events/EventOrigin.h"

namespace hmi {

/// Events of one class and source.
struct EventGroup {
    EventOrigin origin;                   ///< without an event id
    std::uint32_t severity = noSeverity;  ///< of the most severe
    std::size_t count = 0;
    std::size_t active = 0;
    std::size_t unconfirmed = 0;
    std::uint64_t priority = 0;  ///< of the one that an operator has to look at first
    EventRecordPtr newest = {};
};

/// The groups that need attention first stand first, within these those with the newest event.
std::vector<EventGroup> groupsOf(const std::vector<EventSearch::Hit>& hits);

/// Without the newest event.
boost::json::object toJson(const EventGroup& group, boost::json::storage_ptr storage);

}  // namespace hmi
