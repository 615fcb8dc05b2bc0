#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "host/Value.h"

namespace ZrHmiSrv {
namespace {

constexpr int lowestInt = std::numeric_limits<int>::min();
constexpr int highestInt = std::numeric_limits<int>::max();
constexpr long long lowest = std::numeric_limits<long long>::min();
constexpr long long highest = std::numeric_limits<long long>::max();
constexpr unsigned long long highestUnsigned = std::numeric_limits<unsigned long long>::max();

TEST(ValueConversionTest, NumbersTruncateAndSaturateAndOthersAreZero) {
    const struct {
        Value value;
        int asInt;
        long long asLong;
        unsigned long long asUnsigned;
    } cases[] = {
        {4'000'000'000u, highestInt, 4'000'000'000, 4'000'000'000},
        {lowest, lowestInt, lowest, 0},
        {highestUnsigned, highestInt, highest, highestUnsigned},
        {-2.9, -2, -2, 0},
        {2147483647.9, highestInt, 2147483647, 2147483647},
        {2147483648.0, highestInt, 2147483648, 2147483648},
        {0x1p63, highestInt, highest, 0x8000'0000'0000'0000},
        {0x1p64, highestInt, highest, highestUnsigned},
        {-0x1p64, lowestInt, lowest, 0},
        {std::nan(""), 0, 0, 0},
        {"1", 0, 0, 0},
    };
    for (const auto& [value, asInt, asLong, asUnsigned] : cases) {
        SCOPED_TRACE(static_cast<double>(value));
        EXPECT_EQ(static_cast<int>(value), asInt);
        EXPECT_EQ(static_cast<long long>(value), asLong);
        EXPECT_EQ(static_cast<unsigned long long>(value), asUnsigned);
    }
}

}  // namespace
}  // namespace ZrHmiSrv
