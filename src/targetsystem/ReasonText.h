#pragma once

#include <string>

#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// Why a logger's database changed, as the log says it.
std::string reasonText(ZrEventLoggerFnxProxyLib::tagDatabaseChangeReasonEnum reason);

}  // namespace ZrHmiEventLogger
