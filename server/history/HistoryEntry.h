#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/Time.h"

namespace hmi {

/// What has happened. The numbers are those of the file.
enum class HistoryChange : std::uint8_t {
    raised,
    raisedAgain,
    cleared,
    confirmed,
    removed,  ///< the alarm's life is over
    updated,  ///< its content is another, and none of the above
    message,
    gap,
    confirmation,  ///< an operator's, on its way
    audit,
};
inline constexpr std::array<std::string_view, 10> historyChangeNames{
    "raised",  "raised_again", "cleared", "confirmed",    "removed",
    "updated", "message",      "gap",     "confirmation", "audit"};

inline std::string_view nameOf(HistoryChange change) {
    return historyChangeNames[static_cast<std::size_t>(change)];
}

/// What it has happened to.
enum class HistoryKind : std::uint8_t { alarm, message, gap, audit };

constexpr HistoryKind kindOf(HistoryChange change) {
    switch (change) {
        case HistoryChange::message:
            return HistoryKind::message;
        case HistoryChange::gap:
            return HistoryKind::gap;
        case HistoryChange::audit:
            return HistoryKind::audit;
        default:
            return HistoryKind::alarm;
    }
}

/// An entry as it is read.
struct HistoryEntry {
    std::int64_t place = 0;  ///< in the order of time
    std::int64_t sequence = 0;
    ZrHmiSrv::Timestamp at;
    HistoryChange change = HistoryChange::raised;
    std::string station;
    std::string target;
    std::uint32_t severity = 0;
    std::optional<std::int64_t> occurrence;  ///< the sequence with which it began
    std::string event;                       ///< JSON
    std::optional<std::string> text;
    std::string by;
    std::string comment;
};

}  // namespace hmi
