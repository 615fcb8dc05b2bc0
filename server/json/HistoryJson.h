#pragma once

#include <string>

#include <boost/json/object.hpp>

#include "server/history/HistoryEntry.h"
#include "server/history/HistoryStatus.h"

namespace hmi {

/// An entry as clients see it, as text: its event is text already.
std::string toText(const HistoryEntry& entry);

boost::json::object toJson(const HistoryStatus& status, boost::json::storage_ptr storage = {});

}  // namespace hmi
