#pragma once

#include <string>

#include "server/history/HistoryEntry.h"

namespace hmi {

/// The names of the columns.
std::string historyCsvHead();
/// An entry as a row: times in UTC, empty where there is none.
std::string historyCsvRow(const HistoryEntry& entry);

}  // namespace hmi
