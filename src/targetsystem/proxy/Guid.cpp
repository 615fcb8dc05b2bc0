#include "targetsystem/proxy/Guid.h"

#include <charconv>
#include <iterator>

namespace ZrAtlCom {

namespace {

constexpr std::string_view form = "{00000000-0000-0000-0000-000000000000}";
constexpr std::size_t bytesAt[] = {20, 22, 25, 27, 29, 31, 33, 35};

template <class Field>
void writeField(std::string& text, std::size_t offset, Field field) {
    for (std::size_t digit = 2 * sizeof(Field); digit-- > 0;) {
        text[offset + digit] = "0123456789ABCDEF"[field & 0xF];
        field = static_cast<Field>(field >> 4);
    }
}

template <class Field>
bool readField(std::string_view text, std::size_t offset, Field& field) {
    const char* begin = text.data() + offset;
    const char* end = begin + 2 * sizeof(Field);
    return std::from_chars(begin, end, field, 16).ptr == end;
}

bool hasForm(std::string_view text) {
    if (text.size() != form.size())
        return false;
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] != '0' && form[i] != text[i])
            return false;
    }
    return true;
}

}  // namespace

std::string guidText(const GUID& guid) {
    std::string text(form);
    writeField(text, 1, guid.Data1);
    writeField(text, 10, guid.Data2);
    writeField(text, 15, guid.Data3);
    for (std::size_t i = 0; i < std::size(bytesAt); ++i)
        writeField(text, bytesAt[i], guid.Data4[i]);
    return text;
}

GUID parseGuid(std::string_view text) {
    GUID guid{};
    bool valid = hasForm(text) && readField(text, 1, guid.Data1) &&
                 readField(text, 10, guid.Data2) && readField(text, 15, guid.Data3);
    for (std::size_t i = 0; valid && i < std::size(bytesAt); ++i)
        valid = readField(text, bytesAt[i], guid.Data4[i]);
    return valid ? guid : GUID{};
}

}  // namespace ZrAtlCom
