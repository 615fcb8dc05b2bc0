#pragma once

#include <optional>
#include <string_view>

#include "targetsystem/proxy/ZrFnxDll.h"

namespace ZrSimulator {

/// "a.b.c.d.e.f", each 0 to 255; nothing for any other text.
std::optional<FnxNetId> parseNetId(std::string_view text);

/// Orders addresses by their numbers, for maps.
struct NetIdLess {
    bool operator()(const FnxNetId& a, const FnxNetId& b) const;
};

}  // namespace ZrSimulator
