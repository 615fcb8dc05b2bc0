#include "server/net/StreamLines.h"

#include <utility>

namespace hmi {

namespace {

constexpr std::size_t overhead = 128;  ///< bytes of a line besides its text

}  // namespace

void StreamLines::add(ChangeType type, std::string text) {
    text.shrink_to_fit();  // what counts is what it takes
    bytes += text.size() + overhead;
    lines.push_back({type, std::make_shared<const std::string>(std::move(text))});
    while (bytes > maxBytes)
        drop();
}

StreamLine StreamLines::next(Position& position, const StreamTypes& types) const {
    while (position < end()) {
        const Line& line = lines[position++ - first];
        if (line.type == ChangeType::alive || types.contains(line.type))
            return line.text;
    }
    return nullptr;
}

void StreamLines::dropBefore(Position position) {
    while (first < position && !lines.empty())
        drop();
}

void StreamLines::drop() {
    bytes -= lines.front().text->size() + overhead;
    lines.pop_front();
    ++first;
}

}  // namespace hmi
