#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "server/events/EventRecord.h"
#include "server/history/HistoryEntry.h"

namespace hmi {

/// Tells an alarm's occurrence, or a message, from all others of the plant, in every run of the
/// server; except from those that are the same to the logger's reader too.
struct EventIdentity {
    ZrHmiSrv::Timestamp raised;
    /// Of target system, class, id and source in the upper bits, of the arguments in the lower 24.
    std::int64_t digest = 0;

    static EventIdentity of(const EventRecord& event);
    /// All digests of the same class, id and source lie between these.
    std::int64_t first() const noexcept { return digest & ~argumentBits; }
    std::int64_t last() const noexcept { return digest | argumentBits; }
    friend auto operator<=>(const EventIdentity&, const EventIdentity&) = default;

private:
    static constexpr std::int64_t argumentBits = 0xffffff;
};

/// Severities above this are one: those that are none.
inline constexpr std::uint32_t ungraded = 5;

/// An entry as it is written.
struct HistoryRow {
    HistoryChange change;
    ZrHmiSrv::Timestamp at;
    EventRecordPtr record = {};     ///< null for a gap and for audit
    std::int64_t occurrence = 0;    ///< 0: none, or it begins here
    std::optional<EventIdentity> birth = {};  ///< with which it begins
    std::int64_t former = 0;  ///< the occurrence in whose place this one comes; 0: none

    // Without a record.
    std::string target = {};
    std::string event = {};  ///< JSON
    std::optional<std::string> text = {};
    std::string by = {};
    std::string comment = {};
    std::uint32_t severity = ungraded;
};

}  // namespace hmi
