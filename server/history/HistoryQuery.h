#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "server/history/HistoryEntry.h"

namespace hmi {

/// What a reader of the history asks for; what is left open does not count.
struct HistoryQuery {
    std::optional<ZrHmiSrv::Timestamp> from = {};  ///< both ends included
    std::optional<ZrHmiSrv::Timestamp> to = {};
    std::optional<std::string> station = {};
    std::optional<std::string> target = {};
    std::optional<HistoryKind> kind = {};
    std::optional<HistoryChange> change = {};
    std::uint32_t severity = 0;              ///< at least
    std::optional<std::int64_t> occurrence = {};  ///< the life of one event
    /// All of these words; those that end with an asterisk begin a word.
    std::string text = {};
    bool withAudit = true;  ///< also what users did
    std::size_t limit = 100;
    /// Only what comes behind this in the list.
    std::int64_t after = std::numeric_limits<std::int64_t>::max();
};

struct HistoryPage {
    std::vector<HistoryEntry> entries;  ///< newest first
    std::optional<std::int64_t> next;   ///< to go on with; none at the end
};

/// Why a query has no answer, for people.
class HistoryUnreadable : public std::runtime_error {
public:
    HistoryUnreadable(const std::string& text, bool isOverdue)
        : std::runtime_error(text), isOverdue(isOverdue) {}
    const bool isOverdue;  ///< it took too long
};

}  // namespace hmi
