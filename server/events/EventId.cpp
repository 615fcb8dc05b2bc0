#include "server/events/EventId.h"

#include <charconv>

namespace hmi {

std::optional<EventId> EventId::parse(std::string_view text) {
    EventId id;
    if (text.starts_with('m')) {
        id.kind = EventKind::message;
        text.remove_prefix(1);
    }
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, id.number);
    if (read.ec != std::errc() || read.ptr != end)
        return std::nullopt;
    return id;
}

std::string EventId::text() const {
    return (kind == EventKind::message ? "m" : "") + std::to_string(number);
}

}  // namespace hmi
