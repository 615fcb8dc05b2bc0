#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "events/EventContext.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// Where an event comes from, as far as its logger says so, in the host's forms.
struct EventSource {
    /// Asks for the id, the name and the GUID. Throws ZrAtlCom::CAtlException and Abandoned.
    EventSource(const EventContext& context, ZrEventLoggerFnxProxyLib::IZrEvent& event);

    std::optional<std::uint32_t> id;
    std::optional<std::string> name;
    std::optional<std::string> guid;
};

}  // namespace ZrHmiEventLogger
