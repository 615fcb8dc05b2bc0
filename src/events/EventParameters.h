#pragma once

#include "host/Value.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// The parameters that every event bears, in their fixed order.
ZrHmiSrv::Value eventParameters(ZrEventLoggerFnxProxyLib::IZrAlarm& source,
                                const ZrHmiSrv::Text& targetName);
ZrHmiSrv::Value eventParameters(ZrEventLoggerFnxProxyLib::IZrMessage& source,
                                const ZrHmiSrv::Text& targetName);
ZrHmiSrv::Value eventParameters(ZrEventLoggerFnxProxyLib::IZrLoggedEvent& source,
                                const ZrHmiSrv::Text& targetName);

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
