#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "server/net/StreamTypes.h"

namespace hmi {

using StreamLine = std::shared_ptr<const std::string>;

/// The lines of the stream that somebody has still to be sent, each once for all who follow it.
/// Beyond a number of bytes the oldest go: whoever is still before them has lost his place. On the
/// I/O thread only.
class StreamLines {
public:
    using Position = std::uint64_t;

    explicit StreamLines(std::size_t maxBytes) : maxBytes(maxBytes) {}

    void add(ChangeType type, std::string text);
    Position begin() const noexcept { return first; }
    Position end() const noexcept { return first + lines.size(); }
    /// The next of these types from a position on, which moves behind it, or to the end when there
    /// is none and null is answered. Signs of life are of every type.
    StreamLine next(Position& position, const StreamTypes& types) const;
    void dropBefore(Position position);

private:
    struct Line {
        ChangeType type;
        StreamLine text;
    };
    void drop();

    const std::size_t maxBytes;
    std::deque<Line> lines;
    Position first = 0;
    std::size_t bytes = 0;
};

}  // namespace hmi
