#include <limits>

#include <gmock/gmock.h>

#include "events/Conversion.h"
#include "events/ProxyValue.h"
#include "target/proxy/CAtlException.h"
#include "tests/events/FakeEvents.h"

namespace {

using namespace bridge_test;
using namespace ZrEventLoggerFnxProxyLib;
using namespace ZrHmiEventLogger;
using testing::ElementsAre;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmState;
using ZrHmiSrv::Event;
using ZrHmiSrv::Message;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

std::string textOf(const Value& value) {
    switch (value.type()) {
        case ValueType::string:
            return "'" + value.get_string() + "'";
        case ValueType::real:
            return std::to_string(static_cast<double>(value));
        case ValueType::integer:
            return std::to_string(static_cast<int>(value));
        case ValueType::binary: {
            std::string bytes = "bytes";
            for (const std::byte byte : value.get_binary().bytes())
                bytes += " " + std::to_string(static_cast<int>(byte));
            return bytes;
        }
        default:
            return "?";
    }
}

std::vector<std::string> entries(const Value& map) {
    std::vector<std::string> texts;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        texts.push_back(std::string(entry.name()) + " " + textOf(*entry));
    return texts;
}

std::int64_t secondsOf(Timestamp time) {
    return time.nanoseconds() / 1'000'000'000;
}

struct Fixture : testing::Test {
    FakeBorder border;

    Alarm convert(const FakeEventData& data) {
        FakeAlarm source(border, data);
        Alarm alarm;
        toHostAlarm(alarm, source, "Domain", "Filler", 7, false);
        EXPECT_EQ(source.references, 0);
        return alarm;
    }
    Event convertLogged(const FakeEventData& data) {
        FakeLoggedEvent source(border, data);
        Event event;
        toHostEvent(event, source, "Domain", "Filler", 7);
        EXPECT_EQ(source.references, 0);
        return event;
    }
};

using Conversion = Fixture;

/// One byte of types and two of data behind it.
FakeEventData withArguments(ULONG count, ArgumentBlockLayout layout) {
    FakeEventData data;
    data.argumentCount = count;
    data.layout = layout;
    data.block = {11, 22, 33};
    return data;
}

TEST_F(Conversion, GivesAllKindsOfEventsTheSameParameters) {
    FakeEventData data = withArguments(2, {2, 0, 1, 1, 2});
    data.eventId = std::numeric_limits<ULONG>::max();
    data.sourceId = 5;
    data.sourceName = "Beh\xC3\xA4lter";
    data.sourceGuid = GUID{0xA, 0xB, 0xC, {0, 1, 2, 3, 4, 5, 6, 0xFF}};
    data.json = R"({"a": 1})";
    const auto all = ElementsAre(
        "targetName 'Filler'", "eventClass '{0000ABCD-0001-0002-0304-05060708090A}'",
        "eventId 4294967295.000000", "sourceId 5.000000", "sourceName 'Beh\xC3\xA4lter'",
        "sourceGuid '{0000000A-000B-000C-0001-0203040506FF}'", R"(jsonAttribute '{"a": 1}')",
        "numArguments 2.000000", "types bytes 11", "data bytes 22 33");
    EXPECT_THAT(entries(convert(data).payload()), all);
    EXPECT_THAT(entries(convertLogged(data).payload().get_message().parameters()), all);
    data.type = LoggedEventType::alarm;
    EXPECT_THAT(entries(convertLogged(data).payload().get_alarm().payload()), all);
    FakeMessage source(border, data);
    Message message;
    message.parameters().insert("former", 1);
    toHostMessage(message, source, "Domain", "Filler");
    EXPECT_THAT(entries(message.parameters()), all) << "what was there before is gone";
    EXPECT_EQ(source.asked, 0142U) << "id, name, GUID";
    EXPECT_EQ(message.name().view(), "ZREVENTLOGGER_MESSAGE");
    EXPECT_EQ(message.domain().view(), "Domain");
    EXPECT_EQ(message.severity(), ZrHmiSrv::Severity::warning);
    EXPECT_EQ(secondsOf(message.time_raised()), 1);
}

TEST_F(Conversion, TrustsNoArgumentBlock) {
    constexpr LONG maximum = std::numeric_limits<LONG>::max();
    constexpr LONG limit = 16 * 1024 * 1024;
    struct Case {
        const char* what;
        ULONG count;
        ArgumentBlockLayout layout;
        const char* result;  ///< from "numArguments" on; empty: refused
    };
    const Case cases[] = {
        {"data first",
         1,
         {1, 2, 1, 0, 2},
         "numArguments 1.000000, types bytes 33, data bytes 11 22"},
        {"no types", 1, {1, 0, 0, 0, 3}, "numArguments 1.000000, types bytes, data bytes 11 22 33"},
        {"filled in part",
         1,
         {1, 0, 1, 1, 3},
         "numArguments 1.000000, types bytes 11, data bytes 22 33 0"},
        {"an empty block", 3, {3, 0, 0, 0, 0}, "numArguments 3.000000"},
        {"no arguments", 0, {0, 0, 1, 1, 2}, "numArguments 0.000000"},
        {"as large as it may be", 0, {0, 0, limit, 0, 0}, "numArguments 0.000000"},
        {"too large", 1, {1, 0, limit, 0, 1}, ""},
        {"too large without arguments", 0, {0, 0, limit, 0, 1}, ""},
        {"sizes that overflow", 1, {1, 0, maximum, 0, maximum}, ""},
        {"a negative count", 1, {-1, 0, 1, 1, 2}, ""},
        {"a negative offset", 1, {1, -1, 1, 1, 2}, ""},
        {"a negative size", 1, {1, 0, -1, 0, 2}, ""},
        {"a negative size of data", 1, {1, 0, 3, 0, -1}, ""},
        {"types beyond the end", 1, {1, 3, 1, 0, 2}, ""},
        {"data beyond the end", 1, {1, 0, 1, 2, 2}, ""},
        {"an offset that overflows", 1, {1, 0, 1, maximum, 2}, ""},
    };
    for (const Case& example : cases) {
        SCOPED_TRACE(example.what);
        const FakeEventData data = withArguments(example.count, example.layout);
        const auto check = [&](auto parametersOf) {
            std::string result;
            try {
                for (const std::string& entry : entries(parametersOf()))
                    if (!result.empty() || entry.starts_with("numArguments"))
                        result += (result.empty() ? "" : ", ") + entry;
            } catch (const ZrAtlCom::CAtlException& exception) {
                EXPECT_EQ(exception.hresult(), E_INVALIDARG);
            }
            EXPECT_EQ(result, example.result);
        };
        check([&] { return convert(data).payload(); });
        check([&] { return convertLogged(data).payload().get_message().parameters(); });
    }
    EXPECT_THROW(convert(withArguments(1, {2, 0, 1, 1, 2})), ZrAtlCom::CAtlException);
    EXPECT_THROW(convert(withArguments(0, {2, 0, 1, 1, 2})), ZrAtlCom::CAtlException);

    FakeEventData withoutBlock;
    withoutBlock.argumentCount = 4;
    EXPECT_THAT(entries(convert(withoutBlock).payload()),
                ElementsAre("targetName 'Filler'", testing::StartsWith("eventClass"),
                            "eventId 1.000000", "numArguments 4.000000"));
    EXPECT_THAT(entries(convertLogged(withoutBlock).payload().get_message().parameters()),
                testing::Contains("numArguments 0"))
        << "an integer";
}

TEST_F(Conversion, MapsALiveAlarm) {
    struct Case {
        ULONG severity;
        ULONG confirmation;
        int raised;
        int cleared;
        int confirmed;
        std::vector<std::int64_t> result;  ///< severity, confirmation, cleared, confirmed
    };
    const Case cases[] = {
        {0, 0, 5, 0, 0, {0, 0, 0, 0}}, {1, 1, 5, 6, 0, {1, 1, 6, 0}}, {2, 2, 5, 5, 9, {2, 2, 0, 9}},
        {3, 3, 5, 4, 4, {3, 3, 0, 4}}, {4, 4, 5, 6, 7, {4, 4, 6, 7}}, {7, 9, 5, 0, 0, {1, 0, 0, 0}},
    };
    for (const Case& example : cases) {
        FakeEventData data;
        data.severity = example.severity;
        data.confirmationState = example.confirmation;
        data.raised = at(example.raised);
        data.cleared = example.cleared == 0 ? 0 : at(example.cleared);
        data.confirmed = example.confirmed == 0 ? 0 : at(example.confirmed);
        const Alarm alarm = convert(data);
        EXPECT_EQ(
            (std::vector<std::int64_t>{
                static_cast<int>(alarm.severity()), static_cast<int>(alarm.confirmation_state()),
                secondsOf(alarm.time_cleared()), secondsOf(alarm.time_confirmed())}),
            example.result);
        EXPECT_EQ(secondsOf(alarm.time_raised()), 5);
        EXPECT_EQ(alarm.alarm_state(), AlarmState::standard);
    }
    Alarm alarm = convert({});
    EXPECT_EQ(alarm.name().view(), "ZREVENTLOGGER_ALARM");
    EXPECT_EQ(alarm.domain().view(), "Domain");
    EXPECT_EQ(alarm.id(), 7);
    FakeAlarm source(border);
    toHostAlarm(alarm, source, "Domain", "Filler", 8, true);
    EXPECT_EQ(alarm.id(), 7);
    const Event event = eventOf(alarm);
    EXPECT_EQ(event.name(), alarm.name());
    EXPECT_EQ(event.domain(), alarm.domain());
    EXPECT_EQ(event.time_received(), alarm.time_raised());
}

TEST_F(Conversion, MapsALoggedEventByItsType) {
    struct Case {
        bool requiresConfirmation;
        int cleared;
        int confirmed;
        std::vector<std::int64_t> result;  ///< state, confirmation, cleared, confirmed
    };
    const Case cases[] = {
        {true, 3, 4, {0, 3, 3, 4}},
        {true, 5, 0, {0, 4, 5, 0}},
        {false, 5, 4, {0, 0, 5, 4}},
        {false, 0, 0, {4, 0, 0, 0}},
    };
    for (const Case& example : cases) {
        FakeEventData data;
        data.type = LoggedEventType::alarm;
        data.raised = at(5);
        data.cleared = example.cleared == 0 ? 0 : at(example.cleared);
        data.confirmed = example.confirmed == 0 ? 0 : at(example.confirmed);
        data.requiresConfirmation = example.requiresConfirmation;
        const Event event = convertLogged(data);
        const Alarm alarm = event.payload().get_alarm();
        EXPECT_EQ(
            (std::vector<std::int64_t>{
                static_cast<int>(alarm.alarm_state()), static_cast<int>(alarm.confirmation_state()),
                secondsOf(alarm.time_cleared()), secondsOf(alarm.time_confirmed())}),
            example.result);
        EXPECT_EQ(alarm.id(), 7);
        EXPECT_EQ(event.name().view(), "ZREVENTLOGGER_ALARM");
        EXPECT_EQ(secondsOf(event.time_received()), 5);
    }
    FakeEventData data;
    const Event message = convertLogged(data);
    EXPECT_EQ(message.payload().type(), ValueType::message);
    EXPECT_EQ(message.name().view(), "ZREVENTLOGGER_MESSAGE");
    EXPECT_EQ(secondsOf(message.time_received()), 1);
    data.type = static_cast<LoggedEventType>(2);
    const Event other = convertLogged(data);
    EXPECT_FALSE(other.payload().isset());
    EXPECT_EQ(other.domain().view(), "Domain");
    EXPECT_TRUE(other.name().empty());
}

TEST(Times, SaturateAndKeepZero) {
    const auto nanoseconds = [](std::uint64_t time) {
        return toTimestamp({static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)})
            .nanoseconds();
    };
    EXPECT_EQ(nanoseconds(0), 0);
    EXPECT_EQ(nanoseconds(at(1) + 1), 1'000'000'100);
    EXPECT_EQ(nanoseconds(1), std::numeric_limits<std::int64_t>::min());
    for (const std::uint64_t late : {0x7FFF'FFFF'FFFF'FFFFULL, 0x8000'0000'0000'0000ULL, ~0ULL})
        EXPECT_EQ(nanoseconds(late), std::numeric_limits<std::int64_t>::max());
}

}  // namespace
