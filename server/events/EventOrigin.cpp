#include "server/events/EventOrigin.h"

#include <boost/container_hash/hash.hpp>

#include "server/json/Utf8.h"

namespace hmi {

using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

std::string textOf(const Value& parameters, const char* name) {
    const Value* const value = parameters.lookup(name);
    return value && value->type() == ValueType::string ? toValidUtf8(value->get_string())
                                                       : std::string();
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

std::string sourceOf(const Value& parameters) {
    for (const char* const name : {"sourceName", "sourceGuid"}) {
        if (std::string text = textOf(parameters, name); !text.empty())
            return text;
    }
    const auto id = numberOf(parameters, "sourceId");
    return id ? std::to_string(*id) : std::string();
}

}  // namespace

std::size_t hash_value(const EventOrigin& origin) noexcept {
    std::size_t hash = 0;
    for (const std::string* const part :
         {&origin.target, &origin.name, &origin.eventClass, &origin.sourceName})
        boost::hash_combine(hash, *part);
    boost::hash_combine(hash, origin.eventId.value_or(0));
    return hash;
}

EventOrigin originOf(const EventRecord& event) {
    const Value& parameters = event.event().payload();
    return {event.target, toValidUtf8(event.event().name().view()),
            textOf(parameters, "eventClass"), numberOf(parameters, "eventId"),
            sourceOf(parameters)};
}

}  // namespace hmi
