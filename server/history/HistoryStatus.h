#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/Time.h"

namespace hmi {

/// How the history is.
struct HistoryStatus {
    enum class State : std::uint8_t {
        good,
        behind,   ///< more comes than is written
        failing,  ///< nothing can be written
    };
    static constexpr std::array<std::string_view, 3> stateNames{"good", "behind", "failing"};

    State state = State::good;
    ZrHmiSrv::Timestamp since;  ///< of the state
    std::string error;          ///< while it fails
    std::size_t queued = 0;     ///< changes that are not written yet
    std::uint64_t written = 0;  ///< entries, in this run
    std::uint64_t lost = 0;     ///< changes that found no room or could not be written
    std::uint64_t removed = 0;  ///< entries that were too old or too many
    std::size_t textsPending = 0;
    std::uint64_t textsMissed = 0;  ///< entries that stay without a text
    std::int64_t sequence = 0;      ///< the last
    std::int64_t bytes = 0;         ///< that the file uses
};

}  // namespace hmi
