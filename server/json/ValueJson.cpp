#include "server/json/ValueJson.h"

#include <cmath>
#include <limits>

#include "host/Event.h"
#include "server/json/Base64.h"
#include "server/json/IsoTime.h"
#include "server/json/Utf8.h"

namespace hmi {

namespace json = boost::json;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

json::value numberToJson(double number) {
    constexpr double exact = 9007199254740992.0;  // up to here every whole number has a double
    if (!std::isfinite(number))
        return nullptr;
    if (std::fabs(number) <= exact && std::trunc(number) == number)
        return static_cast<std::int64_t>(number);
    return number;
}

json::array vectorToJson(const Value& vector, const json::storage_ptr& storage) {
    json::array array(storage);
    array.reserve(vector.size());
    for (const Value* item = vector.begin_vector(); item != vector.end_vector(); ++item)
        array.push_back(toJson(*item, storage));
    return array;
}

json::object mapToJson(const Value& map, const json::storage_ptr& storage) {
    json::object object(map.size(), storage);
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        object.emplace(toJson(std::string_view(entry.name()), storage), toJson(*entry, storage));
    return object;
}

json::object eventToJson(const ZrHmiSrv::Event& event, const json::storage_ptr& storage) {
    json::object object(storage);
    object.emplace("name", toJson(event.name().view(), storage));
    object.emplace("domain", toJson(event.domain().view(), storage));
    object.emplace("timeReceived", toJson(event.time_received(), storage));
    object.emplace("payload", toJson(event.payload(), storage));
    return object;
}

Value integerFromJson(std::int64_t number) {
    if (number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max())
        return static_cast<long long>(number);
    return static_cast<int>(number);
}

Value containerFromJson(const json::value& json) {
    if (const json::array* array = json.if_array()) {
        Value vector(ValueType::vector);
        vector.reserve(array->size());
        for (const json::value& item : *array)
            vector << fromJson(item);
        return vector;
    }
    Value map(ValueType::map);
    for (const json::key_value_pair& member : json.get_object())
        map.insert_or_update(ZrHmiSrv::Text(std::string_view(member.key())),
                             fromJson(member.value()));
    return map;
}

}  // namespace

json::string toJson(std::string_view text, json::storage_ptr storage) {
    if (isUtf8(text))
        return json::string(text, std::move(storage));
    return json::string(toValidUtf8(text), std::move(storage));
}

json::value toJson(ZrHmiSrv::Timestamp time, json::storage_ptr storage) {
    if (!time.isset())
        return json::value(nullptr, std::move(storage));
    return json::string(isoTime(time), std::move(storage));
}

json::value toJson(const Value& value, json::storage_ptr storage) {
    switch (value.type()) {
        case ValueType::none:
            return nullptr;
        case ValueType::boolean:
            return static_cast<bool>(value);
        case ValueType::integer:
        case ValueType::long_integer:
            return static_cast<std::int64_t>(static_cast<long long>(value));
        case ValueType::unsigned_long_integer:
            return static_cast<std::uint64_t>(static_cast<unsigned long long>(value));
        case ValueType::real:
            return numberToJson(static_cast<double>(value));
        case ValueType::vector:
            return vectorToJson(value, storage);
        case ValueType::map:
        case ValueType::structure:
            return mapToJson(value, storage);
        case ValueType::string:
            return toJson(value.get_text().view(), storage);
        case ValueType::binary:
            return json::string(base64(value.get_binary().bytes()), storage);
        case ValueType::timestamp:
            return toJson(value.get_timestamp(), storage);
        case ValueType::timespan:
            return json::string(isoDuration(value.get_timespan()), storage);
        case ValueType::alarm:
        case ValueType::message:
        case ValueType::event:
            return eventToJson(value.get_event(), storage);
    }
    return nullptr;
}

Value fromJson(const json::value& json) {
    switch (json.kind()) {
        case json::kind::null:
            return {};
        case json::kind::bool_:
            return json.get_bool();
        case json::kind::int64:
            return integerFromJson(json.get_int64());
        case json::kind::uint64:
            return static_cast<unsigned long long>(json.get_uint64());
        case json::kind::double_:
            return json.get_double();
        case json::kind::string:
            return std::string_view(json.get_string());
        case json::kind::array:
        case json::kind::object:
            break;
    }
    return containerFromJson(json);
}

}  // namespace hmi
