#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace hmi {

enum class EventKind : std::uint8_t { alarm, message };

/// How clients name an event: an alarm by the number that the extension gave it, a message by
/// "m" and a number of the server's.
struct EventId {
    EventKind kind = EventKind::alarm;
    std::int64_t number = 0;

    static std::optional<EventId> parse(std::string_view text);
    std::string text() const;
    friend bool operator==(EventId, EventId) = default;
};

inline std::size_t hash_value(EventId id) noexcept {
    return static_cast<std::size_t>(id.number) * 2 + (id.kind == EventKind::message ? 1 : 0);
}

}  // namespace hmi
