#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/Automation.h"

namespace ZrSimulator {

/// 100 ns since 1601-01-01 UTC; 0 is unset.
using FileTime = std::uint64_t;

FILETIME toFiletime(FileTime time);

FileTime currentTime();

/// "2024-05-01T12:30:00.5Z"; nothing for any other text and for what is not later than 1601 begins.
std::optional<FileTime> parseTime(std::string_view text);

}  // namespace ZrSimulator
