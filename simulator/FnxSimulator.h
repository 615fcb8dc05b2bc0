/// The stand-in of the device-protocol library has one thing to set: the local address.
#pragma once

#include "targetsystem/proxy/ZrFnxDll.h"

/// Null: the router is not running, and no port can be opened.
extern "C" ZR_FNX_API void ZrFnxSimulatorSetLocalNetId(const FnxNetId* netId);
