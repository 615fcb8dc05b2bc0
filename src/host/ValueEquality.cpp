#include <algorithm>
#include <span>

#include "host/EventNodes.h"
#include "host/Value.h"
#include "host/ValueNodes.h"

namespace ZrHmiSrv {

namespace {

std::span<const detail::MapEntry> entries(const detail::MapNode* map) noexcept {
    if (!map)
        return {};
    return {map->begin(), map->end()};
}

bool equal_entries(const detail::MapEntry& a, const detail::MapEntry& b) noexcept {
    return a.name == b.name && a.value == b.value;
}

bool equal(const detail::EventNode* a, const detail::EventNode* b) noexcept {
    return a == b || (a && b && a->equals(*b));
}

}  // namespace

bool operator==(const Value& a, const Value& b) noexcept {
    if (a.is_map() && b.is_map())
        return a.content.map == b.content.map ||
               std::ranges::equal(entries(a.content.map), entries(b.content.map), equal_entries);
    if (a.tag != b.tag)
        return false;
    switch (a.tag) {
        case ValueType::none:
            return true;
        case ValueType::boolean:
            return a.content.boolean == b.content.boolean;
        case ValueType::real:
            return a.content.real == b.content.real;
        case ValueType::unsigned_long_integer:
            return a.content.unsigned_integer == b.content.unsigned_integer;
        case ValueType::string:
        case ValueType::binary:
            return a.characters() == b.characters();
        case ValueType::vector:
            return a.content.vector == b.content.vector ||
                   std::equal(a.begin_vector(), a.end_vector(), b.begin_vector(), b.end_vector());
        case ValueType::alarm:
        case ValueType::message:
        case ValueType::event:
            return equal(a.content.event, b.content.event);
        default:
            return a.content.signed_integer == b.content.signed_integer;
    }
}

}  // namespace ZrHmiSrv
