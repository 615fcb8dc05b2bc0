#include <cmath>
#include <limits>

#include <boost/json/serialize.hpp>
#include <gtest/gtest.h>

#include "host/Event.h"
#include "server/json/IsoTime.h"
#include "server/json/ParseJson.h"
#include "server/json/ValueJson.h"

namespace json = boost::json;
using ZrHmiSrv::Binary;
using ZrHmiSrv::Timespan;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace hmi {

namespace {

constexpr std::int64_t second = 1'000'000'000;

TEST(IsoTime, HasSevenDigitsAndSortsAsText) {
    const std::pair<std::int64_t, const char*> cases[] = {
        {1'700'000'000'123'456'789, "2023-11-14T22:13:20.1234567Z"},
        {1, "1970-01-01T00:00:00.0000000Z"},
        {-1, "1969-12-31T23:59:59.9999999Z"},
        {std::numeric_limits<std::int64_t>::max(), "2262-04-11T23:47:16.8547758Z"},
        {std::numeric_limits<std::int64_t>::min(), "1677-09-21T00:12:43.1452241Z"}};
    for (const auto& [nanoseconds, text] : cases)
        EXPECT_EQ(isoTime(Timestamp(nanoseconds)), text);
}

TEST(IsoDuration, TakesFixedLengthsOnly) {
    const std::pair<const char*, std::int64_t> cases[] = {
        {"PT5S", 5 * second},           {"PT0.25S", second / 4},   {"PT0,000000001S", 1},
        {"P1DT2H3M4S", 93784 * second}, {"P2W", 1209600 * second}, {"PT1.5M", 90 * second}};
    for (const auto& [text, nanoseconds] : cases) {
        const auto span = parseIsoDuration(text);
        ASSERT_TRUE(span) << text;
        EXPECT_EQ(span->nanoseconds(), nanoseconds) << text;
        EXPECT_EQ(parseIsoDuration(isoDuration(*span)), span) << text;
    }
    for (const char* text :
         {"", "P", "PT", "P1D ", "5S", "PT5", "P5S", "PT1D", "P1M", "P1Y", "PT1S2M", "PT1.S",
          "PT.5S", "PT1.5M2S", "P1DT", "pt5s", "-PT5S", "PT9999999999999999999S", "P99999999999W"})
        EXPECT_FALSE(parseIsoDuration(text)) << text;
}

TEST(ValueJson, WritesWhatTheExtensionMayHold) {
    Value map(ValueType::structure);
    map.insert("z", -5);
    map.insert("whole", 3.0);
    map.insert("part", 0.5);
    map.insert("nan", std::nan(""));
    map.insert("big", std::numeric_limits<unsigned long long>::max());
    map.insert("time", Timestamp(1'000'000'000));
    map.insert("unset", Timestamp());
    map.insert("span", Timespan(1'500'000'000));
    map.insert("bad", "a\xFFz");
    const std::byte bytes[] = {std::byte{0}, std::byte{255}, std::byte{16}, std::byte{131}};
    map.insert("bytes", Binary(bytes));
    map.insert("none", Value());
    map["list"] << Value(true) << Value("x");
    EXPECT_EQ(serialize(toJson(map)),
              "{\"z\":-5,\"whole\":3,\"part\":5E-1,\"nan\":null,\"big\":18446744073709551615,"
              "\"time\":\"1970-01-01T00:00:01.0000000Z\",\"unset\":null,\"span\":\"PT1.5S\","
              "\"bad\":\"a\xEF\xBF\xBDz\",\"bytes\":\"AP8Qgw==\",\"none\":null,"
              "\"list\":[true,\"x\"]}");
}

TEST(ValueJson, ReadsWhatItWrites) {
    const json::value text = parseJson(
        R"({"b": [1, 2.5, 4294967296, 18446744073709551615, "ü\n", null, [], false], "a": {}})");
    const Value value = fromJson(text);
    EXPECT_EQ(toJson(value), text);
    EXPECT_STREQ(value.begin().name(), "b") << "the order of names stays";
    EXPECT_EQ(parseJson(prettyJson(text)), text);
}

}  // namespace

}  // namespace hmi
