#pragma once

#include <string>

#include "platform/Automation.h"

namespace ZrHmiEventLogger {

/// The form in which a client's locale is looked up: the first underscore becomes a hyphen, then
/// the first "zh-cn" the old name of simplified Chinese.
std::string normaliseLocale(std::string locale);

/// The Windows language identifier of a normalised locale name in UTF-8; 0 when it is not known.
/// Throws nothing but std::bad_alloc.
LCID localeToLanguageId(std::string localeName);

}  // namespace ZrHmiEventLogger
