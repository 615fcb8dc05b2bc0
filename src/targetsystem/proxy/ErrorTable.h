#pragma once

#include <cstdint>
#include <span>

namespace ZrAtlCom {

/// One code of the device protocol; the layers of a runtime use ranges of their own.
struct ErrorRecord {
    std::uint32_t code;
    const char* text;
};

/// All codes, group by group, not sorted. A code may stand twice: its first record counts.
std::span<const ErrorRecord> errorTable() noexcept;

}  // namespace ZrAtlCom
