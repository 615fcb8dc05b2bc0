#pragma once

#include "target/proxy/ZrEventLoggerFnxProxy.h"

/// What ZrEventLoggerFnxProxyLibErrorMessage does from now on. A null text hands out no BSTR; a
/// text lives as long as it may be asked for.
extern "C" ZR_PROXY_API void scriptErrorMessage(HRESULT result, const char* text);
