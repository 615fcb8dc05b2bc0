#pragma once

#include "platform/Automation.h"

namespace ZrSimulator {

/// A code of the device protocol as an HRESULT.
constexpr HRESULT protocolError(std::uint16_t code) {
    return static_cast<HRESULT>(0x98110000u + code);
}

inline constexpr HRESULT targetNotFound = protocolError(0x007);
inline constexpr HRESULT notFound = protocolError(0x70C);
inline constexpr HRESULT timeoutElapsed = protocolError(0x745);
inline constexpr HRESULT portNotOpen = protocolError(0x748);

}  // namespace ZrSimulator
