#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/Time.h"
#include "server/history/HistoryRow.h"

namespace hmi {

/// What the index of words holds beside the text, so that a search by text and filter walks no
/// more rows than it answers.
std::string targetMark(std::string_view target);
std::string stationMark(std::string_view station);
/// Whether a word is one of those two, which no text holds.
bool isNameMark(std::string_view word);
std::string changeMark(HistoryChange change);
std::string severityMark(std::uint32_t severity);
inline std::string marksOf(std::string_view station, std::string_view target, HistoryChange change,
                           std::uint32_t severity) {
    return stationMark(station) + " " + targetMark(target) + " " + changeMark(change) + " " +
           severityMark(severity);
}

/// Where rows of a time have their places: from here on.
std::int64_t placeOf(ZrHmiSrv::Timestamp at);

}  // namespace hmi
