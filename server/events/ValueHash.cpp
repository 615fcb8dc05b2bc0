#include "server/events/ValueHash.h"

#include <string_view>

#include <boost/container_hash/hash.hpp>

namespace hmi {

using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

std::size_t hashOfBytes(std::span<const std::byte> bytes) {
    return std::hash<std::string_view>()(
        std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

void combineElements(std::size_t& hash, const Value& value) {
    if (value.type() == ValueType::vector) {
        for (const Value* item = value.begin_vector(); item != value.end_vector(); ++item)
            boost::hash_combine(hash, hashOf(*item));
        return;
    }
    for (auto entry = value.begin(); entry != value.end(); ++entry) {
        boost::hash_combine(hash, std::hash<std::string_view>()(entry.name()));
        boost::hash_combine(hash, hashOf(*entry));
    }
}

}  // namespace

std::size_t hashOf(const Value& value) {
    std::size_t hash = value.size();
    if (value.is_number()) {
        // Numbers of different types can be equal.
        hash = boost::hash<double>()(static_cast<double>(value));
    } else if (value.type() == ValueType::vector || value.is_map()) {
        combineElements(hash, value);
    } else if (value.type() == ValueType::string) {
        hash = std::hash<std::string_view>()(value.get_text().view());
    } else if (value.type() == ValueType::binary) {
        hash = hashOfBytes(value.get_binary().bytes());
    } else if (value.type() == ValueType::timestamp) {
        hash = boost::hash<std::int64_t>()(value.get_timestamp().nanoseconds());
    }
    return hash;
}

}  // namespace hmi
