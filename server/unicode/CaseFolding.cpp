#include "server/unicode/CaseFolding.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <boost/locale/utf.hpp>

namespace hmi {

namespace {

namespace utf = boost::locale::utf;
using Utf8 = utf::utf_traits<char>;

const Folding* foldingOf(std::uint32_t letter) {
    const auto found = std::lower_bound(
        foldings.begin(), foldings.end(), letter,
        [](const Folding& folding, std::uint32_t wanted) { return folding.letter < wanted; });
    return found != foldings.end() && found->letter == letter ? &*found : nullptr;
}

void append(std::string& folded, const Folding& folding) {
    for (const std::uint32_t point : folding.to) {
        if (point != 0)
            Utf8::encode(point, std::back_inserter(folded));
    }
}

char foldAscii(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

}  // namespace

std::string foldCase(std::string_view text) {
    std::string folded;
    folded.reserve(text.size());
    const char* position = text.data();
    const char* const end = position + text.size();
    while (position != end) {
        if (static_cast<unsigned char>(*position) < 0x80) {
            folded += foldAscii(*position++);
            continue;
        }
        const char* const start = position;
        const auto point = Utf8::decode(position, end);
        if (!utf::is_valid_codepoint(point))
            folded += *(position = start)++;
        else if (const Folding* const folding = foldingOf(point))
            append(folded, *folding);
        else
            folded.append(start, position);
    }
    return folded;
}

bool containsFolded(std::string_view text, std::string_view folded) {
    std::array<char, 256> buffer;
    if (text.size() > buffer.size())
        return foldCase(text).find(folded) != std::string::npos;
    // Most texts are short and ASCII, and take no memory.
    char bits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bits = static_cast<char>(bits | text[i]);
        buffer[i] = foldAscii(text[i]);
    }
    if (static_cast<unsigned char>(bits) < 0x80)
        return std::string_view(buffer.data(), text.size()).find(folded) != std::string::npos;
    return foldCase(text).find(folded) != std::string::npos;
}

}  // namespace hmi
