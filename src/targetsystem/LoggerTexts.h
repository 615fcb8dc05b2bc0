/// What a logger says of an event in a language. Failures are ZrAtlCom::CAtlException; Abandoned when
/// the target system is over between two calls.
#pragma once

#include "events/EventContext.h"
#include "targetsystem/EventReference.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

using ZrEventLoggerFnxProxyLib::IZrEventLogger4;

ZrHmiSrv::Value readEventText(const EventContext& context, IZrEventLogger4& logger,
                               const EventReference& event, LCID language);
ZrHmiSrv::Value readEventClassName(const EventContext& context, IZrEventLogger4& logger,
                                   const EventReference& event, LCID language);
/// No value when the name has no translation.
ZrHmiSrv::Value readSourceName(const EventContext& context, IZrEventLogger4& logger,
                               const EventReference& event, LCID language);
/// A structure of "causeRemedy" and "details", each where there are any: a vector of maps "id",
/// "cause", "remedy"; and by the detail's key a map "text", "comment".
ZrHmiSrv::Value readGuidance(const EventContext& context, IZrEventLogger4& logger,
                               const EventReference& event, LCID language);

/// Made at first use: nothing of the host's library may be called while ours is being loaded.
struct GuidanceKeys {
    ZrHmiSrv::Text causeRemedy = ZrHmiSrv::Text::constant("causeRemedy");
    ZrHmiSrv::Text details = ZrHmiSrv::Text::constant("details");
    ZrHmiSrv::Text id{"id"};
    ZrHmiSrv::Text cause{"cause"};
    ZrHmiSrv::Text remedy{"remedy"};
    ZrHmiSrv::Text text{"text"};
    ZrHmiSrv::Text comment{"comment"};
};
const GuidanceKeys& guidanceKeys();

}  // namespace ZrHmiEventLogger
