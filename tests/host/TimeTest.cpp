#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "host/Time.h"

namespace ZrHmiSrv {
namespace {

constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();

TEST(TimestampTest, ConvertsFileTimesBothWays) {
    const std::int64_t cases[][3] = {
        // file time, nanoseconds, file time again
        {116'444'736'000'000'001, 100, 116'444'736'000'000'001},
        {116'444'735'999'999'999, -100, 116'444'735'999'999'999},
        {1, lowest, 24'211'015'631'452'241},
        {208'678'456'368'547'758, 9'223'372'036'854'775'800, 208'678'456'368'547'758},
        {208'678'456'368'547'759, highest, 208'678'456'368'547'758},
    };
    for (const auto& [fileTime, nanoseconds, back] : cases) {
        const Timestamp time = Timestamp::from_file_time(fileTime);
        EXPECT_EQ(time.nanoseconds(), nanoseconds) << fileTime;
        EXPECT_EQ(time.to_file_time(), back) << fileTime;
    }
    EXPECT_EQ(Timestamp(-1).to_file_time(), 116'444'735'999'999'999);
}

TEST(TimestampTest, SaturatesMilliseconds) {
    EXPECT_EQ(Timestamp::from_milliseconds(9'223'372'036'854).nanoseconds(),
              9'223'372'036'854'000'000);
    EXPECT_EQ(Timestamp::from_milliseconds(9'223'372'036'855).nanoseconds(), highest);
    EXPECT_EQ(Timespan::from_milliseconds(-9'223'372'036'855).nanoseconds(), lowest);
}

}  // namespace
}  // namespace ZrHmiSrv
