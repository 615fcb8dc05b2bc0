#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/Time.h"

namespace hmi {

enum class GapReason : std::uint8_t { disconnected, forgotten, databaseChanged, rejected };

/// Of this time events of a target system may be missing.
struct Gap {
    std::string target;
    ZrHmiSrv::Timestamp from;
    ZrHmiSrv::Timestamp to;  ///< not set while it lasts
    GapReason reason;
    std::optional<std::uint64_t> lost = {};  ///< how many, when that is known
};

}  // namespace hmi
