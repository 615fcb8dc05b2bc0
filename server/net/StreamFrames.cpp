#include "server/net/StreamFrames.h"

#include <utility>

namespace hmi {

namespace {

constexpr std::size_t brace = 1;  ///< which a line has too

/// The head of a whole text frame with so many bytes, as a server sends it.
void appendHead(std::string& to, std::size_t size) {
    constexpr char wholeText = static_cast<char>(0x81);
    constexpr std::size_t shortest = 126;
    constexpr std::size_t medium = 1 << 16;
    int further = 0;  // bytes for the size
    to += wholeText;
    if (size < shortest) {
        to += static_cast<char>(size);
    } else {
        further = size < medium ? 2 : 8;
        to += static_cast<char>(further == 2 ? 126 : 127);
    }
    while (further-- > 0)
        to += static_cast<char>(size >> 8 * further & 0xff);
}

}  // namespace

void StreamFrames::add(std::uint64_t sequence, StreamLine line) {
    const std::string beginning = "{\"seq\":" + std::to_string(sequence) + ",";
    const std::size_t size = beginning.size() + line->size() - brace;
    appendHead(beginnings, size);
    beginnings += beginning;
    ends.push_back(beginnings.size());
    bytes += size;
    lines.push_back(std::move(line));
}

void StreamFrames::clear() noexcept {
    lines.clear();
    beginnings.clear();
    ends.clear();
    bytes = 0;
}

std::vector<boost::asio::const_buffer> StreamFrames::buffers() const {
    std::vector<boost::asio::const_buffer> all;
    all.reserve(2 * lines.size());
    std::size_t begin = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        all.emplace_back(beginnings.data() + begin, ends[i] - begin);
        all.emplace_back(lines[i]->data() + brace, lines[i]->size() - brace);
        begin = ends[i];
    }
    return all;
}

}  // namespace hmi
