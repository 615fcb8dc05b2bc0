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
    ZrHmiSrv::Text targetName{"targetName"};
    ZrHmiSrv::Text eventClass{"eventClass"};
    ZrHmiSrv::Text eventId{"eventId"};
    ZrHmiSrv::Text sourceId{"sourceId"};
    ZrHmiSrv::Text sourceName{"sourceName"};
    ZrHmiSrv::Text sourceGuid{"sourceGuid"};
    ZrHmiSrv::Text jsonAttribute{"jsonAttribute"};
    ZrHmiSrv::Text numArguments{"numArguments"};
    ZrHmiSrv::Text types{"types"};
    ZrHmiSrv::Text data{"data"};
};
const ParameterKeys& keys();

}  // namespace ZrHmiEventLogger
