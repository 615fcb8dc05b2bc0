#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "server/net/StreamWish.h"

namespace hmi {

using StreamLine = std::shared_ptr<const std::string>;

/// A line in each extent that somebody wants; null where nobody does.
struct StreamLineTexts {
    StreamLine whole;
    StreamLine brief;  ///< the same object where there is nothing to leave out
};

/// The lines of the stream that somebody has still to be sent, each once for all who follow it.
/// Beyond a number of bytes the oldest go: whoever is still before them has lost his place. On the
/// I/O thread only.
class StreamLines {
public:
    using Position = std::uint64_t;

    explicit StreamLines(std::size_t maxBytes) : maxBytes(maxBytes) {}

    void add(ChangeType type, StreamLineTexts texts);
    Position begin() const noexcept { return first; }
    Position end() const noexcept { return first + lines.size(); }
    /// The next that is wanted from a position on, which moves behind it, or to the end when there
    /// is none and null is answered; null also for a place that is lost. Signs of life are of every
    /// type.
    StreamLine next(Position& position, const StreamWish& wish) const;
    void dropBefore(Position position);

private:
    struct Line {
        ChangeType type;
        StreamLineTexts texts;
    };
    static std::size_t sizeOf(const StreamLineTexts& texts);
    void drop();

    const std::size_t maxBytes;
    std::deque<Line> lines;
    Position first = 0;
    std::size_t bytes = 0;
};

}  // namespace hmi
