#include "server/events/EventOrigin.h"

#include <boost/container_hash/hash.hpp>

#include "server/json/Utf8.h"

namespace hmi {

using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

std::string_view textOf(const Value& parameters, const char* name) {
    const Value* const value = parameters.lookup(name);
    return value && value->type() == ValueType::string
               ? std::string_view(static_cast<const char*>(*value), value->size())
               : std::string_view();
}

std::optional<std::uint32_t> numberOf(const Value& parameters, const char* name) {
    const Value* const value = parameters.lookup(name);
    if (!value || !value->is_number())
        return std::nullopt;
    const double number = static_cast<double>(*value);
    constexpr double end = 4294967296.0;
    return number >= 0 && number < end ? std::optional(static_cast<std::uint32_t>(number))
                                       : std::nullopt;
}

template <class Origin>
std::size_t hashOf(const Origin& origin) noexcept {
    std::size_t hash = 0;
    for (const std::string_view part :
         {std::string_view(origin.target), std::string_view(origin.name),
          std::string_view(origin.eventClass), std::string_view(origin.sourceName)})
        boost::hash_combine(hash, part);
    boost::hash_combine(hash, origin.eventId.value_or(0));
    return hash;
}

}  // namespace

EventOriginView::EventOriginView(const EventRecord& event)
    : target(event.target),
      name(event.event().name().view()),
      eventClass(textOf(event.event().payload(), "eventClass")),
      eventId(numberOf(event.event().payload(), "eventId")) {
    const Value& parameters = event.event().payload();
    for (const char* const mark : {"sourceName", "sourceGuid"}) {
        sourceName = textOf(parameters, mark);
        if (!sourceName.empty())
            return;
    }
    if (const auto id = numberOf(parameters, "sourceId"))
        sourceName = number = std::to_string(*id);
}

bool operator==(const EventOrigin& a, const EventOriginView& b) noexcept {
    return a.eventId == b.eventId && a.sourceName == b.sourceName && a.name == b.name &&
           a.eventClass == b.eventClass && a.target == b.target;
}

std::size_t hash_value(const EventOriginView& origin) noexcept {
    return hashOf(origin);
}

std::size_t hash_value(const EventOrigin& origin) noexcept {
    return hashOf(origin);
}

EventOrigin originOf(const EventRecord& event) {
    const EventOriginView view(event);
    return {event.target, toValidUtf8(view.name), toValidUtf8(view.eventClass), view.eventId,
            toValidUtf8(view.sourceName)};
}

}  // namespace hmi
