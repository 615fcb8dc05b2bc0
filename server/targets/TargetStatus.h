#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/Time.h"
#include "host/Value.h"

namespace hmi {

enum class TargetState : std::uint8_t { connecting, importing, good, lost, disabled };

constexpr std::string_view nameOf(TargetState state) {
    constexpr std::string_view names[] = {"connecting", "importing", "good", "lost", "disabled"};
    return names[static_cast<std::size_t>(state)];
}

/// The newest import of a target system, as its log entry tells it.
struct TargetImport {
    std::uint64_t number;
    ZrHmiSrv::Timestamp at;
    double milliseconds;
    std::uint64_t logged;
    std::uint64_t active;
    std::uint64_t keptIds;
    std::uint64_t recorded;
    std::uint64_t rejected;
};

/// How many events an import has read.
struct TargetProgress {
    std::uint64_t done;
    std::uint64_t of;

    bool operator==(const TargetProgress&) const = default;
};

/// What is known of a target system without asking it.
struct TargetStatus {
    struct Error {
        std::string hresult;  ///< "0x..."; empty when there is only a text
        std::string text;
    };

    std::string name;
    std::string address = {};
    TargetState state = TargetState::connecting;
    ZrHmiSrv::Timestamp since = {};  ///< in this state
    std::optional<Error> error = {};
    ZrHmiSrv::Timestamp lastNotification = {};  ///< by the server's clock
    std::optional<TargetProgress> progress = {};  ///< of the import that is under way
    std::optional<TargetImport> import = {};
    std::uint64_t forgotten = 0;
    std::uint64_t rejected = 0;
    std::optional<std::int64_t> clockSkewMilliseconds = {};  ///< positive: its clock is ahead
    ZrHmiSrv::Value counters = ZrHmiSrv::Value(ZrHmiSrv::ValueType::structure);
};

}  // namespace hmi
