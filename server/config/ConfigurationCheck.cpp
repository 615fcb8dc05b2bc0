#include "server/config/ConfigurationCheck.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <map>
#include <numeric>

#include "server/config/ConfigurationFields.h"
#include "server/json/IsoTime.h"
#include "server/json/Utf8.h"

namespace hmi {

namespace json = boost::json;

namespace {

using Weight = Finding::Weight;

constexpr std::array<std::string_view, 4> rootNames{"TIMEOUT", "LIMIT_EVENT_COUNT",
                                                    "PRELOAD_TRANSLATIONS", "TARGET_SYSTEMS"};
constexpr std::array<std::string_view, 2> entryNames{"ADDRESS", "ENABLED"};
constexpr std::size_t longestName = 255;

/// How many letters one must change, add or take away.
std::size_t distance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = std::exchange(row[j + 1], std::min({row[j] + 1, row[j + 1] + 1, changed}));
        }
    }
    return row.back();
}

bool isMisspelt(std::string_view name, std::string_view known) {
    constexpr std::size_t longest = 40;  // a longer one is no slip of the finger
    return name.size() < longest &&
           distance(toLowerAscii(name), toLowerAscii(known)) <= 2;
}

bool isAddress(std::string_view text) {
    if (text.empty() || toLowerAscii(text) == "local")
        return true;
    constexpr std::size_t numbers = 6;
    for (std::size_t count = 1; count <= numbers; ++count) {
        unsigned number = 0;
        const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
        if (read.ec != std::errc() || number > 255)
            return false;
        text.remove_prefix(static_cast<std::size_t>(read.ptr - text.data()));
        if (text.empty())
            return true;
        if (!text.starts_with('.'))
            return false;
        text.remove_prefix(1);
    }
    return false;
}

bool hasControls(std::string_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

class Check {
public:
    std::vector<Finding> run(const json::value& configuration) {
        const json::object* const root = configuration.if_object();
        if (!root) {
            add(Weight::fault, "", "not an object");
        } else if (!root->empty()) {
            checkRoot(*root);
        }
        return std::move(findings);
    }

private:
    void add(Weight weight, std::string field, std::string text) {
        findings.push_back({weight, std::move(field), std::move(text)});
    }

    template <class Names>
    void checkNames(const json::object& object, const Names& known, const std::string& prefix) {
        for (const json::key_value_pair& member : object) {
            const std::string_view name = member.key();
            if (std::find(known.begin(), known.end(), name) != known.end())
                continue;
            const auto meant = std::find_if(known.begin(), known.end(), [&](std::string_view one) {
                return isMisspelt(name, one);
            });
            const std::string field = prefix + std::string(name);
            if (meant != known.end())
                add(Weight::fault, field, "unknown; " + std::string(*meant) + " is meant");
            else
                add(Weight::warning, field, "nothing reads this");
        }
    }

    void checkRoot(const json::object& root) {
        checkNames(root, rootNames, "");
        checkTimeout(root.if_contains("TIMEOUT"));
        checkLimit(root.if_contains("LIMIT_EVENT_COUNT"));
        const json::value* const preload = root.if_contains("PRELOAD_TRANSLATIONS");
        if (preload && !preload->is_bool())
            add(Weight::fault, "PRELOAD_TRANSLATIONS", "not a boolean");
        const json::value* const targets = root.if_contains("TARGET_SYSTEMS");
        if (!targets)
            return add(Weight::warning, "TARGET_SYSTEMS", "missing: there are no target systems");
        if (!targets->is_object())
            return add(Weight::fault, "TARGET_SYSTEMS", "not an object");
        for (const json::key_value_pair& entry : targets->get_object())
            checkEntry(entry.key(), entry.value());
    }

    void checkTimeout(const json::value* timeout) {
        constexpr std::int64_t longest = 24LL * 24 * 3600 * 1000;  // 32 bits of milliseconds
        const auto span = timeout && timeout->is_string() ? parseIsoDuration(timeout->get_string())
                                                          : std::nullopt;
        if (!timeout)
            add(Weight::fault, "TIMEOUT", "missing: a duration such as \"PT5S\"");
        else if (!span)
            add(Weight::fault, "TIMEOUT", "not a duration such as \"PT5S\"");
        else if (span->milliseconds() <= 0 || span->milliseconds() > longest)
            add(Weight::fault, "TIMEOUT", "not between one millisecond and 24 days");
    }

    void checkLimit(const json::value* limit) {
        constexpr const char* field = "LIMIT_EVENT_COUNT";
        if (!limit)
            return add(Weight::warning, field,
                       "missing: " + std::to_string(defaultEventLimit) + " is used");
        if (!limit->is_number())
            return add(Weight::fault, field, "not a number");
        const auto number = limit->to_number<double>();
        if (number < 0)
            add(Weight::fault, field, "less than 0");
        else if (number > std::numeric_limits<std::int32_t>::max())
            add(Weight::warning, field, "more than 2147483647, which is used");
    }

    void checkEntry(std::string_view name, const json::value& entry) {
        const std::string path = "TARGET_SYSTEMS." + std::string(name);
        if (name.empty() || name.find("::") != std::string_view::npos)
            add(Weight::fault, path, "a name is not empty and has no \"::\" in it");
        else if (name.size() > longestName || hasControls(name))
            add(Weight::fault, path, "a name has at most 255 bytes and no control characters");
        const json::object* const fields = entry.if_object();
        if (!fields)
            return add(Weight::entry, path, "not an object");
        checkNames(*fields, entryNames, path + ".");
        checkAddress(fields->if_contains("ADDRESS"), path);
        const json::value* const enabled = fields->if_contains("ENABLED");
        if (!enabled)
            add(Weight::entry, path + ".ENABLED", "missing: true or false");
        else if (!enabled->is_bool())
            add(Weight::fault, path + ".ENABLED", "not a boolean");
    }

    void checkAddress(const json::value* address, const std::string& path) {
        const std::string field = path + ".ADDRESS";
        if (!address)
            return add(Weight::entry, field, "missing: \"local\" is this device");
        if (!address->is_string())
            return add(Weight::fault, field, "not a string");
        const std::string_view text = address->get_string();
        if (!isAddress(text))
            add(Weight::warning, field, "neither up to six numbers from 0 to 255 nor \"local\"");
        const auto known = addresses.try_emplace(text.empty() ? "local" : toLowerAscii(text), path);
        if (!known.second)
            add(Weight::warning, field, "the same as of " + known.first->second +
                                            ": each of its alarms comes twice");
    }

    std::vector<Finding> findings;
    std::map<std::string, std::string> addresses;  ///< and whose they are
};

}  // namespace

std::vector<Finding> checkConfiguration(const json::value& configuration) {
    return Check().run(configuration);
}

}  // namespace hmi
