#include <cmath>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "host/Event.h"
#include "host/Value.h"

namespace ZrHmiSrv {
namespace {

constexpr int lowestInt = std::numeric_limits<int>::min();
constexpr int highestInt = std::numeric_limits<int>::max();
constexpr long long lowest = std::numeric_limits<long long>::min();
constexpr long long highest = std::numeric_limits<long long>::max();
constexpr unsigned long long highestUnsigned = std::numeric_limits<unsigned long long>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(ValueConversionTest, NumbersTruncateAndSaturate) {
    const struct {
        Value value;
        int asInt;
        long long asLong;
        unsigned long long asUnsigned;
        double asDouble;
    } cases[] = {
        {-7, -7, -7, 0, -7.0},
        {4'000'000'000u, highestInt, 4'000'000'000, 4'000'000'000, 4e9},
        {lowest, lowestInt, lowest, 0, -0x1p63},
        {highestUnsigned, highestInt, highest, highestUnsigned, 0x1p64},
        {2.9, 2, 2, 2, 2.9},
        {-2.9, -2, -2, 0, -2.9},
        {-0.9, 0, 0, 0, -0.9},
        {2147483647.9, highestInt, 2147483647, 2147483647, 2147483647.9},
        {2147483648.0, highestInt, 2147483648, 2147483648, 2147483648.0},
        {-2147483648.9, lowestInt, -2147483648, 0, -2147483648.9},
        {0x1p63, highestInt, highest, 0x8000'0000'0000'0000, 0x1p63},
        {0x1p64, highestInt, highest, highestUnsigned, 0x1p64},
        {-0x1p63, lowestInt, lowest, 0, -0x1p63},
        {infinity, highestInt, highest, highestUnsigned, infinity},
        {-infinity, lowestInt, lowest, 0, -infinity},
    };
    for (const auto& [value, asInt, asLong, asUnsigned, asDouble] : cases) {
        SCOPED_TRACE(asDouble);
        EXPECT_TRUE(value.is_number());
        EXPECT_EQ(static_cast<int>(value), asInt);
        EXPECT_EQ(static_cast<long long>(value), asLong);
        EXPECT_EQ(static_cast<unsigned long long>(value), asUnsigned);
        EXPECT_EQ(static_cast<double>(value), asDouble);
        EXPECT_FALSE(static_cast<bool>(value));
        EXPECT_EQ(value.get_string(), "");
    }
}

TEST(ValueConversionTest, NotANumberIsZeroAsAnInteger) {
    const Value value(std::nan(""));
    EXPECT_EQ(static_cast<int>(value), 0);
    EXPECT_EQ(static_cast<long long>(value), 0);
    EXPECT_EQ(static_cast<unsigned long long>(value), 0u);
    EXPECT_TRUE(std::isnan(static_cast<double>(value)));
}

TEST(ValueConversionTest, AnotherTypeYieldsZero) {
    Value map(ValueType::map);
    map.insert("1", 1);
    Alarm alarm;
    alarm.set_id(1);
    const std::byte bytes[] = {std::byte{'1'}};
    const Value values[] = {{},           true,
                            "1",          Binary(bytes),
                            Timestamp(1), Timespan(1'000'000),
                            map,          alarm,
                            Message(),    Value(ValueType::vector) << 1};
    for (const Value& value : values) {
        SCOPED_TRACE(static_cast<int>(value.type()));
        EXPECT_FALSE(value.is_number());
        EXPECT_EQ(static_cast<int>(value), 0);
        EXPECT_EQ(static_cast<long long>(value), 0);
        EXPECT_EQ(static_cast<unsigned long long>(value), 0u);
        EXPECT_EQ(static_cast<double>(value), 0);
        EXPECT_EQ(static_cast<bool>(value), value.type() == ValueType::boolean);
        EXPECT_EQ(value.get_string(), value.type() == ValueType::string ? "1" : "");
        EXPECT_STREQ(static_cast<const char*>(value), value.get_string().c_str());
        EXPECT_EQ(value.get_binary().size(), value.type() == ValueType::binary ? 1u : 0u);
        EXPECT_EQ(value.get_timestamp().isset(), value.type() == ValueType::timestamp);
        EXPECT_EQ(value.get_timespan().milliseconds(), value.type() == ValueType::timespan ? 1 : 0);
        EXPECT_EQ(value.get_alarm().isset(), value.type() == ValueType::alarm);
        EXPECT_EQ(value.get_map().size(), value.is_map() ? 1u : 0u);
        EXPECT_EQ(value.get_vector().size(), value.type() == ValueType::vector ? 1u : 0u);
    }
}

TEST(ValueConversionTest, TextsKeepEveryByte) {
    const std::string text("\xC3\xA4\0b", 4);
    const Value value(text);
    EXPECT_EQ(value.size(), 4u);
    EXPECT_EQ(value.get_string(), text);
    EXPECT_EQ(value, Value(std::string_view(text)));
    EXPECT_FALSE(value == Value(std::string_view(text).substr(0, 3)));
    EXPECT_STREQ(static_cast<const char*>(Value(static_cast<const char*>(nullptr))), "");
}

TEST(ValueConversionTest, SetTypeKeepsContentOnlyAcrossTheKindsOfMap) {
    Value value(ValueType::map);
    value.insert("a", 1);
    value.set_type(ValueType::structure);
    EXPECT_EQ(value.type(), ValueType::structure);
    EXPECT_EQ(value.size(), 1u);
    value.set_type(ValueType::vector);
    EXPECT_EQ(value.type(), ValueType::vector);
    EXPECT_TRUE(value.empty());
    value.set(2.5);
    value.set_type(ValueType::real);
    EXPECT_EQ(static_cast<double>(value), 2.5);
    value.clear();
    EXPECT_EQ(value, Value(0.0));
}

}  // namespace
}  // namespace ZrHmiSrv
