/// Texts for HRESULTs. Device-protocol error codes travel as the HRESULT 0x98110000 + code.
#pragma once

#include <string>

#include "platform/Automation.h"

namespace ZrAtlCom {

/// The built-in text, "Unspecified error" when there is none. A constant.
const char* errorText(HRESULT hr) noexcept;

/// The best text there is, in UTF-8: the proxy library's own, the built-in one, or the operating
/// system's.
std::string describe(HRESULT hr);

/// "0x" and eight lower-case hexadecimal digits.
std::string hexText(HRESULT hr);

}  // namespace ZrAtlCom
