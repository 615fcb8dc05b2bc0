#pragma once

#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

/// What ZrEventLoggerFnxProxyLibErrorMessage returns, whose text is always empty.
extern "C" ZR_PROXY_API HRESULT scriptedResult;
