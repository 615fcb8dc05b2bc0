#include <array>
#include <cstring>

#include <gtest/gtest.h>

#include "platform/Automation.h"

namespace {

constexpr DWORD systemFlags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_MAX_WIDTH_MASK;
constexpr DWORD accessDenied = 5;

DWORD format(DWORD flags, DWORD message, char* buffer, DWORD size) {
    return FormatMessageA(flags, nullptr, message, 0, buffer, size, nullptr);
}

// The texts themselves are the system's own.
TEST(SystemMessages, haveTextsForErrorCodesAndTheirHresults) {
    std::array<char, 512> code{};
    std::array<char, 512> hresult{};
    const DWORD length = format(systemFlags, accessDenied, code.data(), 512);
    ASSERT_GT(length, 0u);
    EXPECT_EQ(std::strlen(code.data()), length);
    EXPECT_EQ(format(systemFlags, static_cast<DWORD>(E_ACCESSDENIED), hresult.data(), 512), length);
    EXPECT_STREQ(hresult.data(), code.data());

    EXPECT_EQ(format(systemFlags, 0x98110757, hresult.data(), 512), 0u);
    EXPECT_EQ(format(0, accessDenied, hresult.data(), 512), 0u);
    EXPECT_EQ(format(systemFlags, accessDenied, hresult.data(), length), 0u);
    EXPECT_EQ(format(systemFlags, accessDenied, hresult.data(), length + 1), length);
}

}  // namespace
