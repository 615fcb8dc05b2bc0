#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "simulator/plant/Action.h"
#include "simulator/plant/NetId.h"

namespace ZrSimulator {

/// A runtime as the plant file tells it.
struct RuntimeDefinition {
    EventCatalog catalog;
    std::vector<EventRecord> logged;
    std::vector<TimelineStep> timeline;
    bool repeat = false;
    bool instanceIds = true;  ///< whether its events have instance ids
};

struct Plant {
    std::optional<FnxNetId> localNetId;
    std::map<FnxNetId, RuntimeDefinition, NetIdLess> runtimes;
};

/// Reads a plant file; throws FormatError. Keys may be absent where nothing is meant by it: an
/// event's severity is then 1 and it needs no confirmation. Unknown keys are refused.
Plant readPlant(std::string_view text);

}  // namespace ZrSimulator
