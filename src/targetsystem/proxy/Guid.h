/// GUIDs as text: "{" 8-4-4-4-12 hexadecimal digits "}".
#pragma once

#include <string>
#include <string_view>

#include "platform/Automation.h"

namespace ZrAtlCom {

/// In upper case, with leading zeros.
std::string guidText(const GUID& guid);

/// Accepts either case but no other form: any other text is the all-zero GUID.
GUID parseGuid(std::string_view text);

}  // namespace ZrAtlCom
