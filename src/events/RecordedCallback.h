#pragma once

#include "events/NotificationKind.h"
#include "targetsystem/proxy/ComPtr.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// A notification that arrived while an import ran, kept to be replayed after it.
struct RecordedCallback {
    NotificationKind kind;
    ZrAtlCom::ComPtr<ZrEventLoggerFnxProxyLib::IZrAlarm> alarm;      ///< of the alarm kinds
    ZrAtlCom::ComPtr<ZrEventLoggerFnxProxyLib::IZrMessage> message;  ///< of messageSent
    VARIANT_BOOL flag = VARIANT_FALSE;                               ///< of cleared and confirmed
    ZrEventLoggerFnxProxyLib::tagDatabaseChangeReasonEnum reason{};  ///< of databaseChanged
};

}  // namespace ZrHmiEventLogger
