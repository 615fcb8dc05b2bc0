#pragma once

#include <string_view>

namespace hmi {

enum class LogLevel { debug, info, warning, error, off };

/// Entries below this level are not written. Set once, before other threads log.
void setLogLevel(LogLevel level) noexcept;
bool isLogged(LogLevel level) noexcept;

/// Writes one line to standard error; control characters of the text become spaces. Any thread.
void log(LogLevel level, std::string_view text) noexcept;

}  // namespace hmi
