#include "server/config/ConfigurationPath.h"

namespace hmi {

namespace json = boost::json;

namespace {

constexpr std::string_view separator = "::";

}  // namespace

std::optional<ConfigurationPath> ConfigurationPath::parse(std::string_view text) {
    ConfigurationPath path;
    if (text.empty())
        return path;
    while (true) {
        const auto end = text.find(separator);
        if (end == 0 || text.empty())
            return std::nullopt;
        path.names.emplace_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return path;
        text.remove_prefix(end + separator.size());
    }
}

std::string ConfigurationPath::text() const {
    std::string joined;
    for (const std::string& name : names)
        joined.append(joined.empty() ? "" : separator).append(name);
    return joined;
}

ConfigurationPath ConfigurationPath::upTo(std::size_t depth) const {
    ConfigurationPath shorter = *this;
    shorter.names.resize(std::min(depth, names.size()));
    return shorter;
}

const json::value* ConfigurationPath::find(const json::value& root) const {
    const json::value* at = &root;
    for (const std::string& name : names) {
        const json::object* const object = at->if_object();
        at = object ? object->if_contains(name) : nullptr;
        if (!at)
            return nullptr;
    }
    return at;
}

bool ConfigurationPath::assign(json::value& root, json::value value) const {
    for (std::size_t level = 0; level < depth(); ++level) {
        const json::value* const above = upTo(level).find(root);
        if (above && !above->is_object())
            return false;
    }
    json::value* at = &root;
    for (const std::string& name : names) {
        if (!at->is_object())
            at->emplace_object();
        at = &at->get_object()[name];
    }
    *at = std::move(value);
    return true;
}

void ConfigurationPath::erase(json::value& root) const {
    if (depth() == 0)
        return;
    const json::value* const above = upTo(depth() - 1).find(root);
    if (!above || !above->is_object())
        return;
    json::value* at = &root;
    for (std::size_t level = 0; level + 1 < depth(); ++level)
        at = &at->get_object().at(names[level]);
    json::object& object = at->get_object();
    if (const auto found = object.find(names.back()); found != object.end())
        object.stable_erase(found);
}

}  // namespace hmi
