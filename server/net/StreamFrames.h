#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <boost/asio/buffer.hpp>

#include "server/net/StreamLines.h"

namespace hmi {

/// Some lines for one client, each a text frame of its WebSocket, to be written at once: the lines
/// themselves are those of all clients.
class StreamFrames {
public:
    bool isEmpty() const noexcept { return lines.empty(); }
    bool isFull() const noexcept { return lines.size() >= mostLines || bytes >= mostBytes; }
    /// `sequence`: of the line among those of this client.
    void add(std::uint64_t sequence, StreamLine line);
    void clear() noexcept;
    /// Valid until something is added or all is cleared.
    std::vector<boost::asio::const_buffer> buffers() const;

private:
    static constexpr std::size_t mostLines = 32;
    static constexpr std::size_t mostBytes = 16 << 10;

    std::vector<StreamLine> lines;
    std::string beginnings;         ///< what stands before each line, one behind the other
    std::vector<std::size_t> ends;  ///< of each of them
    std::size_t bytes = 0;
};

}  // namespace hmi
