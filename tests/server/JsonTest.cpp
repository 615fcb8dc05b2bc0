#include <cmath>
#include <limits>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

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

TEST(IsoTime, HasSevenDigitsAndSortsAsText) {
    const struct {
        std::int64_t nanoseconds;
        const char* text;
    } cases[] = {
        {1'700'000'000'123'456'789, "2023-11-14T22:13:20.1234567Z"},
        {1, "1970-01-01T00:00:00.0000000Z"},
        {-1, "1969-12-31T23:59:59.9999999Z"},
        {std::numeric_limits<std::int64_t>::max(), "2262-04-11T23:47:16.8547758Z"},
        {std::numeric_limits<std::int64_t>::min(), "1677-09-21T00:12:43.1452241Z"},
    };
    for (const auto& item : cases)
        EXPECT_EQ(isoTime(Timestamp(item.nanoseconds)), item.text);
}

TEST(IsoDuration, TakesFixedLengthsOnly) {
    constexpr std::int64_t second = 1'000'000'000;
    const struct {
        const char* text;
        std::int64_t nanoseconds;  // -1: no duration
    } cases[] = {
        {"PT5S", 5 * second},
        {"PT0.25S", second / 4},
        {"PT0,000000001S", 1},
        {"P1DT2H3M4S", 93784 * second},
        {"P2W", 1209600 * second},
        {"PT1.5M", 90 * second},
        {"", -1},
        {"P", -1},
        {"PT", -1},
        {"P1D ", -1},
        {"5S", -1},
        {"PT5", -1},
        {"P5S", -1},
        {"PT1D", -1},
        {"P1M", -1},
        {"P1Y", -1},
        {"PT1S2M", -1},
        {"PT1.S", -1},
        {"PT.5S", -1},
        {"PT1.5M2S", -1},
        {"P1DT", -1},
        {"pt5s", -1},
        {"-PT5S", -1},
        {"PT9999999999999999999S", -1},
        {"P99999999999W", -1},
    };
    for (const auto& item : cases) {
        const auto span = parseIsoDuration(item.text);
        EXPECT_EQ(span ? span->nanoseconds() : -1, item.nanoseconds) << item.text;
        if (span) {
            EXPECT_EQ(parseIsoDuration(isoDuration(*span)), span) << item.text;
        }
    }
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
    const json::value text = json::parse(
        R"({"b": [1, 2.5, 4294967296, 18446744073709551615, "ü", null, false], "a": {}})");
    const Value value = fromJson(text);
    EXPECT_EQ(toJson(value), text);
    EXPECT_STREQ(value.begin().name(), "b") << "the order of names stays";
}

TEST(ParseJson, TellsWhereTheFaultIs) {
    const struct {
        const char* text;
        const char* told;
    } cases[] = {
        {"{\n  \"a\": 1,\n  b\n}", "line 3, column 3"},
        {"[1] 2", "line 1, column 5"},
        {"", "line 1, column 1"},
    };
    for (const auto& item : cases) {
        try {
            parseJson(item.text);
            ADD_FAILURE() << item.text;
        } catch (const JsonError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith(item.told));
        }
    }
    EXPECT_EQ(parseJson(prettyJson(parseJson(R"({"a": [1, {"b\n": []}], "c": {}})"))),
              json::parse(R"({"a": [1, {"b\n": []}], "c": {}})"));
}

}  // namespace

}  // namespace hmi
