#include "simulator/plant/NetId.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace ZrSimulator {

std::optional<FnxNetId> parseNetId(std::string_view text) {
    FnxNetId netId{};
    const char* next = text.data();
    const char* const end = next + text.size();
    for (auto& number : netId.b) {
        const bool first = &number == std::begin(netId.b);
        if (!first && (next == end || *next++ != '.'))
            return std::nullopt;
        const auto [stop, error] = std::from_chars(next, end, number);
        if (error != std::errc())
            return std::nullopt;
        next = stop;
    }
    return next == end ? std::optional(netId) : std::nullopt;
}

bool NetIdLess::operator()(const FnxNetId& a, const FnxNetId& b) const {
    return std::lexicographical_compare(std::begin(a.b), std::end(a.b), std::begin(b.b),
                                        std::end(b.b));
}

}  // namespace ZrSimulator
