#pragma once

#include <cstddef>

#include "server/http/Request.h"

namespace hmi {

/// As the protocol spells it; empty for any other.
constexpr const char* nameOf(Method method) {
    constexpr const char* names[] = {"GET", "POST", "PUT", "DELETE", ""};
    return names[static_cast<std::size_t>(method)];
}

}  // namespace hmi
