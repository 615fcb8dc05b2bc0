#include "server/json/ParseJson.h"

#include <algorithm>
#include <string>

#include <boost/json/parser.hpp>
#include <boost/json/serialize.hpp>

#include "server/json/JsonLines.h"

namespace hmi {

namespace json = boost::json;

namespace {

constexpr std::size_t maxDepth = 32;

[[noreturn]] void throwAt(std::string_view text, std::size_t offset, const std::string& reason) {
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const auto newline = before.rfind('\n');
    const std::size_t column =
        newline == std::string_view::npos ? before.size() + 1 : before.size() - newline;
    throw JsonError("line " + std::to_string(line) + ", column " + std::to_string(column) + ": " +
                    reason);
}

void appendPretty(std::string& text, const json::value& value, std::size_t depth);

template <class Container, class Append>
void appendBlock(std::string& text, const Container& items, char open, char close,
                 std::size_t depth, Append append) {
    text += open;
    const char* separator = "\n";
    for (const auto& item : items) {
        text.append(separator).append(2 * (depth + 1), ' ');
        append(item);
        separator = ",\n";
    }
    if (!items.empty())
        text.append("\n").append(2 * depth, ' ');
    text += close;
}

void appendPretty(std::string& text, const json::value& value, std::size_t depth) {
    if (const json::object* object = value.if_object()) {
        appendBlock(text, *object, '{', '}', depth, [&](const json::key_value_pair& member) {
            text.append(json::serialize(json::string_view(member.key()))).append(": ");
            appendPretty(text, member.value(), depth + 1);
        });
    } else if (const json::array* array = value.if_array()) {
        appendBlock(text, *array, '[', ']', depth,
                    [&](const json::value& item) { appendPretty(text, item, depth + 1); });
    } else {
        text += json::serialize(value);
    }
}

}  // namespace

json::value parseJson(std::string_view text) {
    json::parse_options options;
    options.max_depth = maxDepth;
    json::parser parser({}, options);
    json::error_code error;
    const std::size_t read = parser.write_some(text.data(), text.size(), error);
    if (error)
        throwAt(text, read, error.message());
    const auto rest = text.find_first_not_of(" \t\r\n", read);
    if (rest != std::string_view::npos)
        throwAt(text, rest, "more text behind the end of the value");
    const JsonLines lines(text);
    if (const auto& fault = lines.fault())
        throw JsonError("line " + std::to_string(fault->line) + ": " + fault->text);
    return parser.release();
}

std::string prettyJson(const json::value& value) {
    std::string text;
    appendPretty(text, value, 0);
    return text + "\n";
}

}  // namespace hmi
