#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <limits>
#include <optional>

namespace ZrHmiEventLogger {

/// How many events of an import have been read. One thread writes it, any may read it; both numbers
/// are of the same moment.
class ImportProgress {
public:
    struct Count {
        std::uint32_t done;
        std::uint32_t of;
    };

    void begin(std::uint64_t of) noexcept {
        state = std::min<std::uint64_t>(of, std::numeric_limits<std::uint32_t>::max()) << 32;
    }
    void advance() noexcept {
        const std::uint64_t before = state;
        if ((before & doneMask) < before >> 32)
            state = before + 1;
    }
    void end() noexcept { state = 0; }

    /// Nothing when no import runs, or none that has anything to read.
    std::optional<Count> read() const noexcept {
        const std::uint64_t now = state;
        const Count count{static_cast<std::uint32_t>(now & doneMask),
                          static_cast<std::uint32_t>(now >> 32)};
        return count.of > 0 ? std::optional(count) : std::nullopt;
    }

private:
    static constexpr std::uint64_t doneMask = std::numeric_limits<std::uint32_t>::max();
    std::atomic<std::uint64_t> state = 0;  ///< done, and above it of how many
};

}  // namespace ZrHmiEventLogger
