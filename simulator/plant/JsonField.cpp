#include "simulator/plant/JsonField.h"

#include <algorithm>

#include <boost/json/parser.hpp>

namespace ZrSimulator {

namespace json = boost::json;

json::value parseJson(std::string_view text) {
    json::parser parser;
    json::error_code error;
    const std::size_t consumed = parser.write_some(text.data(), text.size(), error);
    const auto rest = text.substr(consumed);
    if (!error && rest.find_first_not_of(" \t\r\n") != std::string_view::npos)
        error = json::error::extra_data;
    if (error) {
        const auto line = 1 + std::count(text.begin(), text.begin() + consumed, '\n');
        throw FormatError("line " + std::to_string(line) + ": not JSON: " + error.message());
    }
    return parser.release();
}

JsonField JsonField::operator[](std::string_view name) const {
    const auto* member = object().if_contains(name);
    if (!member)
        fail("\"" + std::string(name) + "\" is missing");
    return JsonField(*this, name, *member);
}

std::optional<JsonField> JsonField::find(std::string_view name) const {
    const auto* member = object().if_contains(name);
    if (!member || member->is_null())
        return std::nullopt;
    return JsonField(*this, name, *member);
}

void JsonField::allowOnly(std::initializer_list<std::string_view> keys) const {
    for (const auto& member : object()) {
        const std::string_view name = member.key();
        if (std::find(keys.begin(), keys.end(), name) == keys.end())
            JsonField(*this, name, member.value()).fail("unknown key");
    }
}

bool JsonField::flag() const {
    if (!value.is_bool())
        fail("not true or false");
    return value.get_bool();
}

std::string JsonField::text() const {
    if (!value.is_string())
        fail("not a text");
    return std::string(value.get_string());
}

std::int64_t JsonField::integer(std::int64_t min, std::int64_t max) const {
    if (!value.is_int64() || value.get_int64() < min || value.get_int64() > max)
        fail("not a whole number from " + std::to_string(min) + " to " + std::to_string(max));
    return value.get_int64();
}

double JsonField::number(double min, double max) const {
    if (!value.is_number())
        fail("not a number");
    const double given = value.to_number<double>();
    if (!(given >= min && given <= max))
        fail("out of range");
    return given;
}

void JsonField::fail(std::string_view problem) const {
    const std::string place = path();
    throw FormatError(place.empty() ? std::string(problem) : place + ": " + std::string(problem));
}

const json::object& JsonField::object() const {
    if (!value.is_object())
        fail("not an object");
    return value.get_object();
}

const json::array& JsonField::array() const {
    if (!value.is_array())
        fail("not an array");
    return value.get_array();
}

std::string JsonField::path() const {
    if (!parent)
        return {};
    std::string place = parent->path();
    if (parent->isArray())
        return place + "[" + std::to_string(index) + "]";
    if (!place.empty())
        place += '.';
    return place + std::string(key);
}

}  // namespace ZrSimulator
