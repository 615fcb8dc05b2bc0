#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "platform/Automation.h"

namespace ZrSimulator {

/// A value that an event's text refers to. Texts are UTF-8.
using Argument = std::variant<bool, std::int32_t, std::int64_t, std::uint64_t, double, std::string>;
using Arguments = std::vector<Argument>;

/// Arguments as bytes, little-endian. `types` holds one 16-bit VARTYPE for each argument, `data`
/// the values in the same order without gaps:
///
///     VT_BOOL  2 bytes, 0 or 0xFFFF      VT_R8    8 bytes, IEEE 754
///     VT_I4    4 bytes                   VT_BSTR  4 bytes: the number of bytes that follow,
///     VT_I8    8 bytes                            and the text in UTF-8
///     VT_UI8   8 bytes
struct ArgumentBlock {
    std::vector<BYTE> types;
    std::vector<BYTE> data;
};

ArgumentBlock encode(const Arguments& arguments);

/// Trusts nothing: nothing for an unknown type, a value that does not fit into the data, and
/// bytes that are left over.
std::optional<Arguments> decode(std::span<const BYTE> types, std::span<const BYTE> data);

/// The receiver clears the variant.
VARIANT toVariant(const Argument& argument);

/// Replaces "{0}", "{1}" ... by arguments; the number of one that does not exist stays as it is.
std::string formatText(const std::string& text, const Arguments& arguments);

}  // namespace ZrSimulator
