#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "platform/Text.h"

namespace {

TEST(Bstr, keepsEmbeddedZerosAndItsLengthInFrontOfThem) {
    const Utf16String text(OLESTR("ab\0cd\0"), 6);
    BSTR copy = SysAllocStringLen(text.data(), 6);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(SysStringLen(copy), 6u);
    EXPECT_EQ(SysStringByteLen(copy), 12u);
    EXPECT_EQ(Utf16View(copy, 6), text);
    EXPECT_EQ(copy[6], OLESTR('\0'));

    std::uint32_t prefix = 0;
    std::memcpy(&prefix, reinterpret_cast<const char*>(copy) - sizeof prefix, sizeof prefix);
    EXPECT_EQ(prefix, 12u);
    SysFreeString(copy);
}

TEST(Bstr, nullIsTheEmptyTextAndTooLongIsRefused) {
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    SysFreeString(nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, 0x7FFFFFFF), nullptr);
    EXPECT_EQ(SysAllocStringLen(nullptr, 0xFFFFFFFF), nullptr);
}

TEST(ScopedBstr, convertsAndReplacesWhatItReceives) {
    ScopedBstr text("K\xC3\xBChlung");
    EXPECT_EQ(SysStringLen(text.get()), 7u);
    EXPECT_EQ(text.utf8(), "K\xC3\xBChlung");
    *text.put() = SysAllocString(OLESTR("next"));
    EXPECT_EQ(text.utf8(), "next");
    text.put();
    EXPECT_EQ(text.utf8(), "");
    EXPECT_EQ(SysStringLen(ScopedBstr("").get()), 0u);
}

}  // namespace
