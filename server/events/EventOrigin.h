#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "server/events/EventRecord.h"

namespace hmi {

/// Where an event comes from: what those have in common that only differ in when they happened and
/// in their arguments.
struct EventOrigin {
    std::string target;
    std::string name;
    std::string eventClass;                ///< empty when it names none
    std::optional<std::uint32_t> eventId;  ///< within its class
    std::string sourceName;                ///< or, without a name, another mark of the source

    friend bool operator==(const EventOrigin&, const EventOrigin&) = default;
};

std::size_t hash_value(const EventOrigin& origin) noexcept;

EventOrigin originOf(const EventRecord& event);

}  // namespace hmi
