#pragma once

#include <cstddef>

#include "robustness/EventImage.h"

namespace bridge_test {

/// What a runtime's logger holds.
struct LoggerContent {
    EventImages events;  ///< the newest of the log and all active alarms
    std::size_t active = 0;
    std::vector<std::pair<std::string, std::string>> uncleared;  ///< what an active alarm may be
};

/// Takes over what is shown of an alarm where either image will do.
void acceptUncleared(LoggerContent& content, const EventImages& shown);

/// Asks the logger through a connection of its own. Throws when the runtime does not answer.
LoggerContent readLogger(const char* netId, ULONG limit);

}  // namespace bridge_test
