#pragma once

#include <string_view>

namespace hmi {

enum class LogLevel { debug, info, warning, error, off };
enum class LogFormat { text, json };

/// Entries below the level are not written. Called once, before other threads log.
void configureLog(LogLevel level, LogFormat format);
bool isLogged(LogLevel level) noexcept;

/// Writes one line to standard error; control characters of the text become spaces. Any thread.
void log(LogLevel level, std::string_view text) noexcept;

}  // namespace hmi
