#pragma once

#include <bitset>
#include <optional>
#include <string_view>

#include "server/events/Change.h"
#include "server/json/EventJson.h"

namespace hmi {

/// Which changes a client of the stream wants to hear of, and how much of each event.
class StreamWish {
public:
    /// Of the target of a request: "types=a,b", or all; "brief=1". Nothing for what is no such thing.
    static std::optional<StreamWish> parse(std::string_view target);

    void remove(ChangeType type) { types.reset(static_cast<std::size_t>(type)); }
    /// Whether they were asked for one by one.
    bool areNamed() const noexcept { return named; }
    Extent extent() const noexcept { return wanted; }
    bool contains(ChangeType type) const { return types[static_cast<std::size_t>(type)]; }

private:
    std::bitset<changeTypes> types;
    bool named = false;
    Extent wanted = Extent::whole;
};

}  // namespace hmi
