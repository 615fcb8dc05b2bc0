#include "server/net/StreamLines.h"

#include <utility>

namespace hmi {

namespace {

constexpr std::size_t overhead = 128;  ///< bytes of a line besides its text

}  // namespace

void StreamLines::add(ChangeType type, StreamLineTexts texts) {
    bytes += sizeOf(texts);
    lines.push_back({type, std::move(texts)});
    while (bytes > maxBytes)
        drop();
}

StreamLine StreamLines::next(Position& position, const StreamWish& wish) const {
    while (position >= begin() && position < end()) {
        const auto& [type, texts] = lines[position++ - first];
        if (type == ChangeType::alive || wish.contains(type))
            return wish.extent() == Extent::brief ? texts.brief : texts.whole;
    }
    return nullptr;
}

void StreamLines::dropBefore(Position position) {
    while (first < position && !lines.empty())
        drop();
}

std::size_t StreamLines::sizeOf(const StreamLineTexts& texts) {
    std::size_t size = overhead;
    if (texts.whole)
        size += texts.whole->size();
    if (texts.brief && texts.brief != texts.whole)
        size += texts.brief->size();
    return size;
}

void StreamLines::drop() {
    bytes -= sizeOf(lines.front().texts);
    lines.pop_front();
    ++first;
}

}  // namespace hmi
