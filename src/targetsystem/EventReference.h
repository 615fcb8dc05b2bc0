#pragma once

#include "host/Text.h"
#include "host/Value.h"
#include "platform/Automation.h"

namespace ZrHmiEventLogger {

/// An event as far as its texts depend on it. Copies are cheap.
struct EventReference {
    GUID eventClass{};
    ULONG eventId = 0;
    ZrHmiSrv::Text sourceName{};
    ZrHmiSrv::Binary types{};  ///< of the arguments; both parts are empty when there are none
    ZrHmiSrv::Binary data{};
};

}  // namespace ZrHmiEventLogger
