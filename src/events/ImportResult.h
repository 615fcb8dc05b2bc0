#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// What an import brought.
struct ImportResult {
    std::uint64_t number = 0;        ///< of this import, counted from 1 over the target's life
    std::uint64_t loggedEvents = 0;  ///< fetched from the log
    std::uint64_t activeAlarms = 0;  ///< taken over with their live proxy alarm
    std::uint64_t keptIds = 0;       ///< of those, known to the host before
    std::uint64_t recorded = 0;      ///< notifications that arrived meanwhile
    std::uint64_t rejected = 0;      ///< events that contradict themselves, left out
    std::uint64_t overruns = 0;      ///< of the target's imports, those that more notifications met
                                     ///< than are kept, and that were done again
    std::chrono::nanoseconds duration{};
    /// The logger's database changed meanwhile: what was imported is stale already.
    std::optional<ZrEventLoggerFnxProxyLib::tagDatabaseChangeReasonEnum> databaseChange;
    /// The former events and what else the import needed: let it go with no lock held.
    std::shared_ptr<const void> released;
};

using ImportResultPtr = std::shared_ptr<const ImportResult>;

}  // namespace ZrHmiEventLogger
