#pragma once

#include <optional>
#include <string>

#include "server/events/EventRecord.h"

namespace hmi {

enum class EventState : std::uint8_t { active, cleared, unconfirmed };

/// What a reader asks for; what is left open does not count.
struct EventFilter {
    std::optional<std::string> target;
    std::optional<EventKind> kind;
    std::optional<EventState> state;
    std::uint32_t severity = 0;  ///< at least

    bool matches(const EventRecord& event) const;
    /// How many of the criteria are set.
    int criteria() const;
};

}  // namespace hmi
