#include <gtest/gtest.h>

#include "platform/Text.h"

namespace {

// U+FFFD in UTF-8.
#define BAD "\xEF\xBF\xBD"

TEST(Text, convertsBothWays) {
    const struct {
        std::string utf8;
        Utf16String utf16;
    } texts[] = {
        {"", OLESTR("")},
        {std::string("a\0b", 3), Utf16String(OLESTR("a\0b"), 3)},
        {"\xC3\xA4\xE2\x82\xAC", OLESTR("\u00E4\u20AC")},
        {"\xF0\x9F\x94\xA7 \xF4\x8F\xBF\xBF", OLESTR("\U0001F527 \U0010FFFF")},
    };
    for (const auto& text : texts) {
        SCOPED_TRACE(text.utf8);
        EXPECT_EQ(toUtf16(text.utf8), text.utf16);
        EXPECT_EQ(toUtf8(text.utf16), text.utf8);
    }
    EXPECT_EQ(systemTextToUtf8("Access is denied."), "Access is denied.");
}

TEST(Text, replacesEachMalformedByteAndKeepsWhatFollows) {
    const struct {
        const char* what;
        const char* malformed;
        const char* repaired;
    } cases[] = {
        {"continuation without a lead", "a\x80z", "a" BAD "z"},
        {"lead before a letter", "\xC3(", BAD "("},
        {"cut off at the end", "ab\xE2\x82", "ab" BAD BAD},
        {"overlong slash", "\xC0\xAF", BAD BAD},
        {"surrogate", "\xED\xA0\x80!", BAD BAD BAD "!"},
        {"above the last character", "\xF4\x90\x80\x80", BAD BAD BAD BAD},
    };
    for (const auto& text : cases) {
        SCOPED_TRACE(text.what);
        EXPECT_EQ(toUtf8(toUtf16(text.malformed)), text.repaired);
    }
}

TEST(Text, replacesSurrogatesThatStandAlone) {
    constexpr OLECHAR high = 0xD83D;
    constexpr OLECHAR low = 0xDD27;
    EXPECT_EQ(toUtf8(Utf16String{high, OLESTR('x')}), BAD "x");
    EXPECT_EQ(toUtf8(Utf16String{low, high, low}), BAD "\xF0\x9F\x94\xA7");
}

}  // namespace
