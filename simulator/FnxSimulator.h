/// The stand-in of the device-protocol library has one thing to set: the local address.
#pragma once

#include "targetsystem/proxy/ZrFnxDll.h"

extern "C" ZR_FNX_API void ZrFnxSimulatorSetLocalNetId(const FnxNetId* netId);
