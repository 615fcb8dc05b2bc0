#pragma once

#include <cstdint>
#include <optional>

#include "events/EventContext.h"
#include "host/Text.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// Where an event comes from, as far as its logger says so, in the host's forms.
struct EventSource {
    /// Asks for the id, the name and the GUID. Throws ZrAtlCom::CAtlException and Abandoned.
    EventSource(const EventContext& context, ZrEventLoggerFnxProxyLib::IZrEvent& event);

    std::optional<std::uint32_t> id;
    std::optional<ZrHmiSrv::Text> name;
    std::optional<ZrHmiSrv::Text> guid;
};

}  // namespace ZrHmiEventLogger
