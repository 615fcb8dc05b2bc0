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

namespace keys {
extern const ZrHmiSrv::Text targetName;
extern const ZrHmiSrv::Text eventClass;
extern const ZrHmiSrv::Text eventId;
extern const ZrHmiSrv::Text sourceId;
extern const ZrHmiSrv::Text sourceName;
extern const ZrHmiSrv::Text sourceGuid;
extern const ZrHmiSrv::Text jsonAttribute;
extern const ZrHmiSrv::Text numArguments;
extern const ZrHmiSrv::Text types;
extern const ZrHmiSrv::Text data;
}  // namespace keys

}  // namespace ZrHmiEventLogger
