#pragma once

#include <string>

#include "server/api/EventSearch.h"

namespace hmi {

/// The names of the columns.
std::string csvHead();
/// An event or a gap as a row: times in UTC, empty where there is none.
std::string csvRow(const EventSearch::Hit& hit);

}  // namespace hmi
