#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "host/Result.h"
#include "host/Time.h"

namespace hmi {

enum class ConfirmationState : std::uint8_t {
    requested,   ///< the logger has been asked
    accepted,    ///< the logger took it, and has not said yet that the alarm is confirmed
    confirmed,   ///< the logger said so
    failed,      ///< the logger or the extension refused
    unanswered,  ///< neither was heard of in time
};

/// What became of an operator's confirmation of one occurrence of an alarm. Immutable and shared.
struct Confirmation {
    std::uint64_t number = 0;  ///< counts up, so that a late answer finds only its own request
    ConfirmationState state = ConfirmationState::requested;
    std::string by;
    ZrHmiSrv::Timestamp at = {};
    std::string comment = {};
    std::optional<ZrHmiSrv::ErrorValue> result = {};  ///< once there is an answer
    std::string text = {};                            ///< of that answer
};
using ConfirmationPtr = std::shared_ptr<const Confirmation>;

struct EventRecord;

/// The confirmation that `after`, a newer content of the alarm `before`, has: none when it is
/// another occurrence, the confirmed one when the logger says so now.
ConfirmationPtr confirmationOf(const EventRecord& after, const EventRecord& before);

}  // namespace hmi
