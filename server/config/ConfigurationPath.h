#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <boost/json/value.hpp>

namespace hmi {

/// Names from the root of the configuration downwards, written with "::" between them.
class ConfigurationPath {
public:
    /// As deep as a file may be nested; a longer path leads nowhere.
    static constexpr std::size_t maxDepth = 32;

    ConfigurationPath() = default;
    /// Nothing for a text with an empty name; the empty text is the root.
    static std::optional<ConfigurationPath> parse(std::string_view text);

    std::size_t depth() const noexcept { return names.size(); }
    const std::string& name(std::size_t level) const { return names[level]; }
    std::string text() const;
    /// The first `depth` names.
    ConfigurationPath upTo(std::size_t depth) const;

    /// Null when there is nothing.
    const boost::json::value* find(const boost::json::value& root) const;
    /// Creates the objects on the way. False, with nothing changed, when something else is there.
    bool assign(boost::json::value& root, boost::json::value value) const;
    void erase(boost::json::value& root) const;

private:
    std::vector<std::string> names;
};

}  // namespace hmi
