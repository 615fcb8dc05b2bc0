#pragma once

#include <cstdint>
#include <string>

#include "targetsystem/proxy/CAtlException.h"

namespace ZrHmiEventLogger {

/// What a logger says of an event contradicts itself. To ask again would not help: the event is
/// left out, and the connection stays.
class MalformedEvent : public ZrAtlCom::CAtlException {
public:
    /// The class as text.
    MalformedEvent(const std::string& eventClass, std::uint32_t eventId);
};

}  // namespace ZrHmiEventLogger
