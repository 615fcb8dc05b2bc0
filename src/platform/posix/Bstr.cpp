#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "platform/Automation.h"

namespace {

using Length = std::uint32_t;

// Eight bytes stand before the characters, the length in the last four of them, so that the
// characters are aligned as memory from the heap is on Windows too.
constexpr std::size_t headerSize = 8;
constexpr std::size_t maxLength =
    (std::numeric_limits<Length>::max() - headerSize) / sizeof(OLECHAR) - 1;

char* lengthOf(BSTR text) { return reinterpret_cast<char*>(text) - sizeof(Length); }

}  // namespace

BSTR SysAllocString(const OLECHAR* text) {
    if (!text)
        return nullptr;
    const std::size_t length = std::char_traits<OLECHAR>::length(text);
    return length > maxLength ? nullptr : SysAllocStringLen(text, static_cast<UINT>(length));
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
    if (length > maxLength)
        return nullptr;
    const auto size = static_cast<Length>(length * sizeof(OLECHAR));
    auto* memory = static_cast<char*>(std::calloc(1, headerSize + size + sizeof(OLECHAR)));
    if (!memory)
        return nullptr;
    auto* copy = reinterpret_cast<BSTR>(memory + headerSize);
    std::memcpy(lengthOf(copy), &size, sizeof size);
    if (text)
        std::memcpy(copy, text, size);
    return copy;
}

UINT SysStringByteLen(BSTR text) {
    Length size = 0;
    if (text)
        std::memcpy(&size, lengthOf(text), sizeof size);
    return size;
}

UINT SysStringLen(BSTR text) {
    return SysStringByteLen(text) / static_cast<UINT>(sizeof(OLECHAR));
}

void SysFreeString(BSTR text) {
    if (text)
        std::free(reinterpret_cast<char*>(text) - headerSize);
}
