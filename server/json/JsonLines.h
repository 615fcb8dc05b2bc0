#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace hmi {

/// Where in a JSON text its members stand, and what a parser lets pass that nobody means: a name
/// that an object has twice, a number that no double holds.
class JsonLines {
public:
    /// The text is valid JSON.
    explicit JsonLines(std::string_view text);

    struct Fault {
        std::size_t line;
        std::string text;
    };
    const std::optional<Fault>& fault() const noexcept { return firstFault; }

    /// The line of a member, by the names from the root on with dots between them: of those that
    /// are there. The first three levels are known.
    std::size_t of(std::string_view path) const;

private:
    class Handler;
    std::map<std::string, std::size_t, std::less<>> lines;
    std::optional<Fault> firstFault;
};

}  // namespace hmi
