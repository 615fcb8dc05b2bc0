#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace hmi {

/// What a letter is compared as: up to three code points, the rest of them 0.
struct Folding {
    std::uint32_t letter;
    std::uint32_t to[3];
};

/// All letters that are not compared as themselves, in their order. Made from Unicode's table.
extern const std::span<const Folding> foldings;

/// A text as it is compared without regard to case, in all scripts: equal for "Straße" and
/// "STRASSE". Bytes that are no UTF-8 stay as they are.
std::string foldCase(std::string_view text);

/// Whether `foldCase(text)` contains this.
bool containsFolded(std::string_view text, std::string_view folded);

}  // namespace hmi
