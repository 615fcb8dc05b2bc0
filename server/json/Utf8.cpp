#include "server/json/Utf8.h"

#include <algorithm>

#include <boost/locale/utf.hpp>

namespace hmi {

namespace {

using Utf8 = boost::locale::utf::utf_traits<char>;

bool isBad(boost::locale::utf::code_point point) {
    return point == boost::locale::utf::illegal || point == boost::locale::utf::incomplete;
}

}  // namespace

bool isUtf8(std::string_view text) noexcept {
    const char* position = text.data();
    const char* const end = position + text.size();
    while (position != end) {
        if (static_cast<unsigned char>(*position) < 0x80)
            ++position;
        else if (isBad(Utf8::decode(position, end)))
            return false;
    }
    return true;
}

std::string toValidUtf8(std::string_view text) {
    if (isUtf8(text))
        return std::string(text);
    std::string valid;
    const char* position = text.data();
    const char* const end = position + text.size();
    while (position != end) {
        const char* const start = position;
        if (isBad(Utf8::decode(position, end))) {
            valid += "\xEF\xBF\xBD";
            position = start + 1;
        } else {
            valid.append(start, position);
        }
    }
    return valid;
}

std::string oneLine(std::string_view text) {
    std::string line = toValidUtf8(text);
    for (std::size_t i = 0; i < line.size(); ++i) {
        const auto byte = static_cast<unsigned char>(line[i]);
        const auto next = static_cast<unsigned char>(i + 1 < line.size() ? line[i + 1] : 0);
        if (byte < 0x20 || byte == 0x7F)
            line[i] = ' ';
        else if (byte == 0xC2 && next < 0xA0)  // U+0080 to U+009F
            line.replace(i, 2, " ");
    }
    return line;
}

std::string toLowerAscii(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return lower;
}

}  // namespace hmi
