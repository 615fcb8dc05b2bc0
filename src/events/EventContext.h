#pragma once

#include <atomic>
#include <cstdint>

#include "events/ILoggingFunctions.h"
#include "host/Text.h"

namespace ZrHmiEventLogger {

/// What every piece that makes events of one target system needs to know.
struct EventContext {
    ZrHmiSrv::Text targetName;
    ZrHmiSrv::Text domain;
    ILoggingFunctions& logging;
    std::atomic<std::int32_t>& hostIds;  ///< the next host alarm id, shared by all target systems
    std::int64_t eventLimit;

    int drawHostId() const { return hostIds.fetch_add(1); }
};

}  // namespace ZrHmiEventLogger
