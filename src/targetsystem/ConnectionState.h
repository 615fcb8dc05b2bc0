#pragma once

#include <optional>

#include "platform/Automation.h"

namespace ZrHmiEventLogger {

/// What is known of a target's connection.
struct ConnectionState {
    bool connected = false;
    /// Why the last connect failed; 0 or none when it did not.
    std::optional<HRESULT> connectError;
};

}  // namespace ZrHmiEventLogger
