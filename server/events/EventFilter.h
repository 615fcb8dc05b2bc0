#pragma once

#include <optional>
#include <string>

#include "server/events/EventRecord.h"

namespace hmi {

enum class EventState : std::uint8_t { active, cleared, unconfirmed };

/// Newest first; what needs attention first; by name of the target system; most severe first. Within
/// these newest first.
enum class EventOrder : std::uint8_t { time, priority, target, severity };

/// What a reader asks for; what is left open does not count.
struct EventFilter {
    std::optional<std::string> target;
    std::optional<EventKind> kind;
    std::optional<EventState> state;
    std::uint32_t severity = 0;  ///< at least

    std::optional<ZrHmiSrv::Timestamp> from;  ///< time, both ends included
    std::optional<ZrHmiSrv::Timestamp> to;
    EventOrder order = EventOrder::time;
    bool reversed = false;   ///< the last of that order first
    bool lastKnown = false;  ///< also alarms whose target system was lost

    bool matches(const EventRecord& event) const;
    /// The same but for target system and time.
    bool matches(const EventShape& shape) const;
    /// Whether one comes before the other in the list.
    bool isBefore(const EventRecord& a, const EventRecord& b) const;

private:
    bool isInOrder(const EventRecord& a, const EventRecord& b) const;
};

}  // namespace hmi
