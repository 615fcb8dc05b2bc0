#include "server/json/JsonLines.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>
#include <vector>

#include <boost/json/basic_parser_impl.hpp>

namespace hmi {

namespace json = boost::json;

/// Follows the parser through the text, which it is given line by line.
class JsonLines::Handler {
public:
    explicit Handler(JsonLines& to) : to(to) {}

    static constexpr std::size_t max_object_size = std::size_t(-1);
    static constexpr std::size_t max_array_size = std::size_t(-1);
    static constexpr std::size_t max_key_size = std::size_t(-1);
    static constexpr std::size_t max_string_size = std::size_t(-1);

    bool on_document_begin(json::error_code&) { return true; }
    bool on_document_end(json::error_code&) { return true; }
    bool on_object_begin(json::error_code&) {
        levels.emplace_back();
        return true;
    }
    bool on_object_end(std::size_t, json::error_code&) {
        levels.pop_back();
        return true;
    }
    bool on_array_begin(json::error_code&) { return true; }
    bool on_array_end(std::size_t, json::error_code&) { return true; }
    bool on_key_part(json::string_view part, std::size_t, json::error_code&) {
        name.append(part.data(), part.size());
        return true;
    }
    bool on_key(json::string_view part, std::size_t, json::error_code&) {
        name.append(part.data(), part.size());
        Level& level = levels.back();
        level.current = std::exchange(name, {});
        if (!level.names.insert(level.current).second)
            note("is there twice");
        if (levels.size() <= deepest)
            to.lines.try_emplace(path(), line);
        return true;
    }
    bool on_string_part(json::string_view, std::size_t, json::error_code&) { return true; }
    bool on_string(json::string_view, std::size_t, json::error_code&) { return true; }
    bool on_number_part(json::string_view, json::error_code&) { return true; }
    bool on_int64(std::int64_t, json::string_view, json::error_code&) { return true; }
    bool on_uint64(std::uint64_t, json::string_view, json::error_code&) { return true; }
    bool on_double(double number, json::string_view, json::error_code&) {
        if (!std::isfinite(number))
            note("a number is too large");
        return true;
    }
    bool on_bool(bool, json::error_code&) { return true; }
    bool on_null(json::error_code&) { return true; }
    bool on_comment_part(json::string_view, json::error_code&) { return true; }
    bool on_comment(json::string_view, json::error_code&) { return true; }

    std::size_t line = 1;

private:
    static constexpr std::size_t deepest = 3;

    struct Level {
        std::set<std::string> names;
        std::string current;
    };

    std::string path() const {
        std::string joined;
        for (const Level& level : levels)
            joined.append(joined.empty() ? "" : ".").append(level.current);
        return joined;
    }

    void note(std::string text) {
        const std::string where = levels.empty() ? std::string() : path();
        if (!to.firstFault)
            to.firstFault = Fault{line, (where.empty() ? where : where + ": ") + text};
    }

    JsonLines& to;
    std::vector<Level> levels;
    std::string name;
};

JsonLines::JsonLines(std::string_view text) {
    json::basic_parser<Handler> parser(json::parse_options(), *this);
    json::error_code error;
    while (!text.empty() && !error) {
        const std::size_t length = std::min(text.find('\n'), text.size() - 1) + 1;
        const bool more = length < text.size();
        parser.write_some(more, text.data(), length, error);
        text.remove_prefix(length);
        ++parser.handler().line;
        if (parser.done())
            break;
    }
}

std::size_t JsonLines::of(std::string_view path) const {
    for (;;) {
        if (const auto found = lines.find(path); found != lines.end())
            return found->second;
        const auto dot = path.rfind('.');
        if (dot == std::string_view::npos)
            return 1;
        path = path.substr(0, dot);
    }
}

}  // namespace hmi
