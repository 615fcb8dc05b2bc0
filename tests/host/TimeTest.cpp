#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "host/Time.h"

namespace ZrHmiSrv {
namespace {

constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();

TEST(TimestampTest, ConvertsFileTimesBothWays) {
    const struct {
        long long fileTime;
        std::int64_t nanoseconds;
        long long back;
    } cases[] = {
        {0, 0, 0},
        {116'444'736'000'000'001, 100, 116'444'736'000'000'001},
        {116'444'735'999'999'999, -100, 116'444'735'999'999'999},
        {133'497'504'001'234'567, 1'705'276'800'123'456'700, 133'497'504'001'234'567},
        {24'192'000'000'000, -9'223'372'036'854'775'807 - 1, 24'211'015'631'452'241},
        {1, lowest, 24'211'015'631'452'241},
        {lowest, lowest, 24'211'015'631'452'241},
        {208'678'456'368'547'758, 9'223'372'036'854'775'800, 208'678'456'368'547'758},
        {208'678'456'368'547'759, highest, 208'678'456'368'547'758},
        {highest, highest, 208'678'456'368'547'758},
    };
    for (const auto& [fileTime, nanoseconds, back] : cases) {
        const Timestamp time = Timestamp::from_file_time(fileTime);
        EXPECT_EQ(time.nanoseconds(), nanoseconds) << fileTime;
        EXPECT_EQ(time.to_file_time(), back) << fileTime;
    }
}

TEST(TimestampTest, RoundsPartsOfAFileTimeUnitDown) {
    EXPECT_EQ(Timestamp(199).to_file_time(), 116'444'736'000'000'001);
    EXPECT_EQ(Timestamp(-1).to_file_time(), 116'444'735'999'999'999);
}

TEST(TimestampTest, SaturatesMilliseconds) {
    const struct {
        std::int64_t milliseconds;
        std::int64_t nanoseconds;
    } cases[] = {{-1, -1'000'000},
                 {9'223'372'036'854, 9'223'372'036'854'000'000},
                 {9'223'372'036'855, highest},
                 {-9'223'372'036'855, lowest}};
    for (const auto& [milliseconds, nanoseconds] : cases) {
        EXPECT_EQ(Timestamp::from_milliseconds(milliseconds).nanoseconds(), nanoseconds);
        EXPECT_EQ(Timespan::from_milliseconds(milliseconds).nanoseconds(), nanoseconds);
    }
    EXPECT_EQ(Timespan(-1'999'999).milliseconds(), -1);
}

}  // namespace
}  // namespace ZrHmiSrv
