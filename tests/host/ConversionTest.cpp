// Of numbers and times.
#include <cmath>
#include <limits>
#include <utility>

#include <gtest/gtest.h>

#include "host/Value.h"

namespace ZrHmiSrv {
namespace {

constexpr int lowestInt = std::numeric_limits<int>::min();
constexpr int highestInt = std::numeric_limits<int>::max();
constexpr long long lowest = std::numeric_limits<long long>::min();
constexpr long long highest = std::numeric_limits<long long>::max();
constexpr unsigned long long highestUnsigned = std::numeric_limits<unsigned long long>::max();

TEST(Conversion, NumbersTruncateAndSaturateAndOthersAreZero) {
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

TEST(Conversion, TimesSaturate) {
    const std::pair<long long, long long> cases[] = {
        // file time, nanoseconds
        {0, 0},
        {116'444'736'000'000'001, 100},
        {116'444'735'999'999'999, -100},
        {1, lowest},
        {208'678'456'368'547'758, 9'223'372'036'854'775'800},
        {208'678'456'368'547'759, highest},
    };
    for (const auto& [fileTime, nanoseconds] : cases)
        EXPECT_EQ(Timestamp::from_file_time(fileTime).nanoseconds(), nanoseconds) << fileTime;
    EXPECT_EQ(Timestamp::from_milliseconds(9'223'372'036'854).nanoseconds(),
              9'223'372'036'854'000'000);
    EXPECT_EQ(Timestamp::from_milliseconds(9'223'372'036'855).nanoseconds(), highest);
    EXPECT_EQ(Timespan::from_milliseconds(-9'223'372'036'855).nanoseconds(), lowest);
}

}  // namespace
}  // namespace ZrHmiSrv
