#pragma once

#include <string>
#include <string_view>

namespace hmi {

bool isUtf8(std::string_view text) noexcept;

/// The text with every malformed sequence replaced by U+FFFD: for texts that are not ours.
std::string toValidUtf8(std::string_view text);

/// Valid UTF-8 in one line: control characters, which a terminal might obey, become spaces.
std::string oneLine(std::string_view text);

/// A to Z become small letters; nothing else changes.
std::string toLowerAscii(std::string_view text);

}  // namespace hmi
