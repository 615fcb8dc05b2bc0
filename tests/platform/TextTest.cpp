#include <gtest/gtest.h>

#include "platform/Text.h"

namespace {

// U+FFFD in UTF-8.
#define BAD "\xEF\xBF\xBD"

TEST(Text, replacesEachMalformedByteAndKeepsTheRest) {
    const std::pair<std::string, std::string> texts[] = {
        {std::string("a\0b", 3), std::string("a\0b", 3)},
        {"\xC3\xA4\xE2\x82\xAC\xF4\x8F\xBF\xBF", "\xC3\xA4\xE2\x82\xAC\xF4\x8F\xBF\xBF"},
        {"a\x80z", "a" BAD "z"},                // continuation without a lead
        {"\xC3(", BAD "("},                     // lead before a letter
        {"ab\xE2\x82", "ab" BAD BAD},           // cut off at the end
        {"\xC0\xAF", BAD BAD},                  // overlong
        {"\xED\xA0\x80!", BAD BAD BAD "!"},     // surrogate
        {"\xF4\x90\x80\x80", BAD BAD BAD BAD},  // above the last character
    };
    for (const auto& [text, expected] : texts)
        EXPECT_EQ(toUtf8(toUtf16(text)), expected);
    EXPECT_EQ(toUtf16("\xF0\x9F\x94\xA7"), OLESTR("\U0001F527"));
    constexpr OLECHAR high = 0xD83D;
    constexpr OLECHAR low = 0xDD27;
    EXPECT_EQ(toUtf8(Utf16String{low, high, low, high}), BAD "\xF0\x9F\x94\xA7" BAD);
}

}  // namespace
