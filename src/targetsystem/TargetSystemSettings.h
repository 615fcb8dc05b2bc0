#pragma once

#include <cstdint>
#include <string>

#include "host/Text.h"
#include "host/Time.h"

namespace ZrHmiEventLogger {

/// What one target system is created with.
struct TargetSystemSettings {
    ZrHmiSrv::Text name;
    std::string address;   ///< as configured; the address of this device may complete it
    bool enabled = false;  ///< whether the configuration connects it when it is created
    ZrHmiSrv::Timespan timeout;
    std::int64_t eventLimit = 0;
};

}  // namespace ZrHmiEventLogger
