/// The device-protocol client library, as far as the bridge calls it: the address of this device.
#pragma once

#include <cstdint>

#if defined(_WIN32) && defined(ZR_FNX_DLL_BUILD)
#define ZR_FNX_API __declspec(dllexport)
#elif defined(_WIN32)
#define ZR_FNX_API __declspec(dllimport)
#else
#define ZR_FNX_API __attribute__((visibility("default")))
#endif

/// Six numbers that name a device on the device network, written "a.b.c.d.e.f".
struct FnxNetId {
    std::uint8_t b[6];
};

extern "C" {
/// Opens a port to the local router; 0 when there is none. Close it with FnxPortClose.
ZR_FNX_API std::int32_t FnxPortOpen();
ZR_FNX_API std::int32_t FnxPortClose(std::int32_t port);
/// A protocol error code, 0 for success.
ZR_FNX_API std::int32_t FnxGetLocalAddress(std::int32_t port, FnxNetId* netId);
}
