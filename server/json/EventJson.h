#pragma once

#include <string>

#include <boost/json/object.hpp>

#include "server/events/Change.h"
#include "server/events/LocalizedEvent.h"

namespace hmi {

/// An event as clients see it.
boost::json::object toJson(const EventRecord& event, boost::json::storage_ptr storage = {});
/// Adds the texts of a localization that succeeded.
void addTexts(boost::json::object& event, const EventTexts& texts);

boost::json::object toJson(const LogEntry& entry, boost::json::storage_ptr storage = {});

/// A change as one line of the stream.
std::string toLine(const Change& change);

}  // namespace hmi
