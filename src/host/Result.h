#pragma once

#include <cstdint>

#include "host/Text.h"

namespace ZrHmiSrv {

/// Result codes of host calls and listeners. The numbers are the host's.
enum class ErrorValue : std::uint32_t {
    success = 0,
    operation_failed = 257,  ///< a target-system operation failed
    request_failed = 258,    ///< unknown locale, or an exception while a request was served
    initialization_failed = 261,
    invalid_configuration = 269,  ///< a configuration value is missing or of the wrong type
    unsupported_item = 270,
    unknown_target_system = 292,
    unknown_command = 293,  ///< also: a configuration path outside the extension's
    not_connected = 1294,
};

/// A code and, where there is more to say, a text.
class ResultPair {
public:
    ResultPair(ErrorValue code = ErrorValue::success) noexcept : code(code) {}
    ResultPair(ErrorValue code, Text text) noexcept : code(code), message(std::move(text)) {}

    ErrorValue result() const noexcept { return code; }
    const Text& text() const noexcept { return message; }
    bool succeeded() const noexcept { return code == ErrorValue::success; }
    friend bool operator==(const ResultPair& pair, ErrorValue value) noexcept {
        return pair.code == value;
    }

private:
    ErrorValue code;
    Text message;
};

}  // namespace ZrHmiSrv
