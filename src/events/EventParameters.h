#pragma once

#include "events/EventContext.h"
#include "host/Value.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// The parameters that every event bears, in their fixed order. Throws as the conversion does.
ZrHmiSrv::Value eventParameters(const EventContext& context,
                                ZrEventLoggerFnxProxyLib::IZrAlarm& source);
ZrHmiSrv::Value eventParameters(const EventContext& context,
                                ZrEventLoggerFnxProxyLib::IZrMessage& source);
ZrHmiSrv::Value eventParameters(const EventContext& context,
                                ZrEventLoggerFnxProxyLib::IZrLoggedEvent& source);

/// Made at first use: nothing of the host's library may be called while ours is being loaded.
struct ParameterKeys {
    ZrHmiSrv::Text targetName = ZrHmiSrv::Text::constant("targetName");
    ZrHmiSrv::Text eventClass = ZrHmiSrv::Text::constant("eventClass");
    ZrHmiSrv::Text eventId = ZrHmiSrv::Text::constant("eventId");
    ZrHmiSrv::Text sourceId = ZrHmiSrv::Text::constant("sourceId");
    ZrHmiSrv::Text sourceName = ZrHmiSrv::Text::constant("sourceName");
    ZrHmiSrv::Text sourceGuid = ZrHmiSrv::Text::constant("sourceGuid");
    ZrHmiSrv::Text jsonAttribute = ZrHmiSrv::Text::constant("jsonAttribute");
    ZrHmiSrv::Text numArguments = ZrHmiSrv::Text::constant("numArguments");
    ZrHmiSrv::Text types = ZrHmiSrv::Text::constant("types");
    ZrHmiSrv::Text data = ZrHmiSrv::Text::constant("data");
};
const ParameterKeys& keys();

}  // namespace ZrHmiEventLogger
