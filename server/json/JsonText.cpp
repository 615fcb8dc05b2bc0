#include "server/json/JsonText.h"

#include <algorithm>
#include <cmath>

#include "host/Event.h"
#include "server/json/Base64.h"
#include "server/json/IsoTime.h"
#include "server/json/Utf8.h"

namespace hmi {

using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

bool isPlain(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte < 0x80 && c != '"' && c != '\\';
}

void appendEscaped(std::string& to, std::string_view text) {
    constexpr const char* hex = "0123456789abcdef";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            to += '\\';
            to += c;
        } else if (byte < 0x20) {
            to += "\\u00";
            to += hex[byte >> 4];
            to += hex[byte & 0xF];
        } else {
            to += c;
        }
    }
}

void appendQuoted(std::string& to, std::string_view text) {
    to += '"';
    to += text;
    to += '"';
}

void appendNumber(std::string& to, double number) {
    constexpr double exact = 9007199254740992.0;  // up to here every whole number has a double
    if (!std::isfinite(number)) {
        to += "null";
    } else if (std::fabs(number) <= exact && std::trunc(number) == number) {
        appendJson(to, static_cast<std::int64_t>(number));
    } else {
        char digits[40];
        to.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
    }
}

void appendVector(std::string& to, const Value& vector) {
    to += '[';
    for (const Value* item = vector.begin_vector(); item != vector.end_vector(); ++item) {
        to += item == vector.begin_vector() ? "" : ",";
        appendJson(to, *item);
    }
    to += ']';
}

void appendMap(std::string& to, const Value& map) {
    JsonObjectText object(to);
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        object.add(entry.name(), *entry);
    object.end();
}

void appendEvent(std::string& to, const ZrHmiSrv::Event& event) {
    JsonObjectText object(to);
    object.add("name", event.name().view());
    object.add("domain", event.domain().view());
    object.add("timeReceived", event.time_received());
    object.add("payload", event.payload());
    object.end();
}

}  // namespace

void appendJson(std::string& to, std::string_view text) {
    if (std::all_of(text.begin(), text.end(), isPlain))
        return appendQuoted(to, text);
    to += '"';
    if (isUtf8(text))
        appendEscaped(to, text);
    else
        appendEscaped(to, toValidUtf8(text));
    to += '"';
}

void appendJson(std::string& to, ZrHmiSrv::Timestamp time) {
    if (time.isset())
        appendQuoted(to, isoTime(time));
    else
        to += "null";
}

void appendJson(std::string& to, const Value& value) {
    switch (value.type()) {
        case ValueType::none:
            to += "null";
            return;
        case ValueType::boolean:
            return appendJson(to, static_cast<bool>(value));
        case ValueType::integer:
        case ValueType::long_integer:
            return appendJson(to, static_cast<long long>(value));
        case ValueType::unsigned_long_integer:
            return appendJson(to, static_cast<unsigned long long>(value));
        case ValueType::real:
            return appendNumber(to, static_cast<double>(value));
        case ValueType::vector:
            return appendVector(to, value);
        case ValueType::map:
        case ValueType::structure:
            return appendMap(to, value);
        case ValueType::string:
            return appendJson(to, std::string_view(static_cast<const char*>(value), value.size()));
        case ValueType::binary:
            return appendQuoted(to, base64(value.get_binary().bytes()));
        case ValueType::timestamp:
            return appendJson(to, value.get_timestamp());
        case ValueType::timespan:
            return appendQuoted(to, isoDuration(value.get_timespan()));
        case ValueType::alarm:
        case ValueType::message:
        case ValueType::event:
            return appendEvent(to, value.get_event());
    }
}

}  // namespace hmi
