#include "platform/Text.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <new>
#include <type_traits>

#include <boost/nowide/utf/utf.hpp>

namespace {

namespace utf = boost::nowide::utf;

constexpr utf::code_point replacement = 0xFFFD;

template <class Out, class In>
std::basic_string<Out> convert(std::basic_string_view<In> text) {
    // Most texts are ASCII, which is the same in both.
    const In* const end = text.data() + text.size();
    const In* const special = std::find_if(text.data(), end, [](In unit) {
        return static_cast<std::make_unsigned_t<In>>(unit) > 0x7F;
    });
    std::basic_string<Out> converted(text.data(), special);
    for (const In* next = special; next != end;) {
        const In* const start = next;
        utf::code_point character = utf::utf_traits<In>::decode(next, end);
        if (character == utf::illegal || character == utf::incomplete) {
            character = replacement;
            next = start + 1;
        }
        utf::utf_traits<Out>::encode(character, std::back_inserter(converted));
    }
    return converted;
}

}  // namespace

std::string toUtf8(Utf16View text) {
    return convert<char>(text);
}

Utf16String toUtf16(std::string_view text) {
    return convert<OLECHAR>(text);
}

std::string systemTextToUtf8(std::string_view text) {
#ifdef _WIN32
    const auto size = static_cast<int>(text.size());
    Utf16String wide(text.size(), OLESTR('\0'));
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), size);
    return toUtf8(Utf16View(wide).substr(0, static_cast<std::size_t>(length)));
#else
    return toUtf8(toUtf16(text));
#endif
}

BSTR newBstr(std::string_view utf8) {
    const bool isAscii = std::all_of(utf8.begin(), utf8.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x80;
    });
    if (isAscii && utf8.size() <= std::numeric_limits<UINT>::max()) {
        BSTR copy = SysAllocStringLen(nullptr, static_cast<UINT>(utf8.size()));
        if (!copy)
            throw std::bad_alloc();
        std::copy(utf8.begin(), utf8.end(), copy);
        return copy;
    }
    const Utf16String text = toUtf16(utf8);
    if (text.size() > std::numeric_limits<UINT>::max())
        throw std::bad_alloc();
    BSTR copy = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (!copy)
        throw std::bad_alloc();
    return copy;
}
