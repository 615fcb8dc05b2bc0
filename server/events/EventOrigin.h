#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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

/// The same without copies, as the event holds it: not always UTF-8. Valid as long as the event.
class EventOriginView {
    std::string number;

public:
    explicit EventOriginView(const EventRecord& event);
    EventOriginView(const EventOriginView&) = delete;
    EventOriginView& operator=(const EventOriginView&) = delete;

    std::string_view target;
    std::string_view name;
    std::string_view eventClass;
    std::optional<std::uint32_t> eventId;
    std::string_view sourceName;

    friend bool operator==(const EventOrigin& a, const EventOriginView& b) noexcept;
};

std::size_t hash_value(const EventOriginView& origin) noexcept;
std::size_t hash_value(const EventOrigin& origin) noexcept;

EventOrigin originOf(const EventRecord& event);

}  // namespace hmi
