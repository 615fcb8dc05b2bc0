#include "simulator/plant/FileTime.h"

#include <chrono>

#include "platform/IsoTimeText.h"

namespace ZrSimulator {

namespace {

constexpr std::chrono::sys_days epoch = std::chrono::year(1601) / 1 / 1;

}  // namespace

FILETIME toFiletime(FileTime time) {
    return {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
}

FileTime currentTime() {
    // In ticks from the start: nanoseconds since 1601 are too many for the clock's 64 bits.
    const auto now = std::chrono::time_point_cast<TimeTicks>(std::chrono::system_clock::now());
    return static_cast<FileTime>((now - epoch).count());
}

std::optional<FileTime> parseTime(std::string_view text) {
    const auto time = parseIsoTimeText(text);
    if (!time || *time <= epoch)
        return std::nullopt;
    return static_cast<FileTime>((*time - epoch).count());
}

}  // namespace ZrSimulator
