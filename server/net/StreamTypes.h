#pragma once

#include <bitset>
#include <optional>
#include <string_view>

#include "server/events/Change.h"

namespace hmi {

/// The types of changes that a client of the stream wants to hear of.
class StreamTypes {
public:
    /// Of the target of a request: "types=a,b", or all. Nothing for what is no such thing.
    static std::optional<StreamTypes> parse(std::string_view target);

    void remove(ChangeType type) { types.reset(static_cast<std::size_t>(type)); }
    /// Whether they were asked for one by one.
    bool areNamed() const noexcept { return named; }
    bool contains(ChangeType type) const { return types[static_cast<std::size_t>(type)]; }

private:
    std::bitset<changeTypes> types;
    bool named = false;
};

}  // namespace hmi
