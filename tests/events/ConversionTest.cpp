#include <limits>
#include <utility>

#include <gmock/gmock.h>

#include "events/Conversion.h"
#include "events/ProxyValue.h"
#include "targetsystem/proxy/CAtlException.h"
#include "tests/events/FakeEvent.h"
#include "tests/events/RecordingLogging.h"

namespace {

using namespace bridge_test;
using namespace ZrHmiEventLogger;
using testing::ElementsAre;
using ZrEventLoggerFnxProxyLib::LoggedEventType;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::Event;
using ZrHmiSrv::Message;
using ZrHmiSrv::Value;

std::vector<std::string> entries(const Value& map) {
    std::vector<std::string> texts;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        texts.push_back(std::string(entry.name()) + " " + textOf(*entry));
    return texts;
}

struct Conversion : testing::Test {
    FakeBorder border;
    RecordingLogging host;
    std::atomic<std::int32_t> ids = 1;
    const std::atomic<bool> never = false;
    const EventContext context{"Filler", "Domain", host, ids, 0, {}, never, never};

    Alarm convert(const FakeEventData& data) {
        FakeEvent source(border, data);
        Alarm alarm;
        toHostAlarm(alarm, source, context, 7, false);
        EXPECT_EQ(source.references, 0);
        return alarm;
    }
    Event convertLogged(const FakeEventData& data) {
        FakeEvent source(border, data);
        const Event event = eventOf(toHostPayload(source, context, 7));
        EXPECT_EQ(source.references, 0);
        return event;
    }
};

TEST_F(Conversion, GivesAllKindsOfEventsTheSameParameters) {
    FakeEventData data;
    data.eventId = std::numeric_limits<ULONG>::max();
    data.sourceId = 5;
    data.sourceName = "Beh\xC3\xA4lter";
    data.sourceGuid = GUID{0xA, 0xB, 0xC, {0, 1, 2, 3, 4, 5, 6, 0xFF}};
    data.json = R"({"a": 1})";
    data.argumentCount = 2;
    data.layout = {2, 0, 1, 1, 2};
    data.block = {11, 22, 33};
    const auto all = ElementsAre(
        "targetName Filler", "eventClass {0000ABCD-0001-0002-0304-05060708090A}",
        "eventId 4294967295.000000", "sourceId 5.000000", "sourceName Beh\xC3\xA4lter",
        "sourceGuid {0000000A-000B-000C-0001-0203040506FF}", R"(jsonAttribute {"a": 1})",
        "numArguments 2.000000", "types bytes 11", "data bytes 22 33");
    EXPECT_THAT(entries(convert(data).payload()), all);
    EXPECT_THAT(entries(convertLogged(data).payload().get_message().parameters()), all);
    data.type = LoggedEventType::alarm;
    EXPECT_THAT(entries(convertLogged(data).payload().get_alarm().payload()), all);
    FakeEvent source(border, data);
    Message message;
    message.parameters().insert("former", 1);
    toHostMessage(message, source, context);
    EXPECT_THAT(entries(message.parameters()), all) << "what was there before is gone";
    EXPECT_EQ(source.asked, 0142U) << "id, name, GUID";
    EXPECT_EQ(message.name().view(), "ZREVENTLOGGER_MESSAGE");
    EXPECT_EQ(message.domain().view(), "Domain");
    EXPECT_EQ(message.severity(), ZrHmiSrv::Severity::warning);
    EXPECT_EQ(textOf(message.time_raised()), "1s");

    FakeEventData bare;
    bare.argumentCount = 4;
    EXPECT_THAT(entries(convert(bare).payload()),
                ElementsAre("targetName Filler", testing::StartsWith("eventClass"),
                            "eventId 1.000000", "numArguments 4.000000"));
    EXPECT_THAT(entries(convertLogged(bare).payload().get_message().parameters()),
                testing::Contains("numArguments 0"))
        << "an integer";
}

TEST_F(Conversion, TrustsNoArgumentBlock) {
    constexpr LONG maximum = std::numeric_limits<LONG>::max();
    constexpr LONG limit = 16 * 1024 * 1024;
    struct Case {
        fnx::ArgumentBlockLayout layout;
        const char* result;  ///< behind "numArguments"
        ULONG count = 1;
    };
    const Case cases[] = {
        {{1, 2, 1, 0, 2}, "1.000000, types bytes 33, data bytes 11 22"},    // data first
        {{1, 0, 0, 0, 3}, "1.000000, types bytes, data bytes 11 22 33"},    // no types
        {{1, 0, 1, 1, 3}, "1.000000, types bytes 11, data bytes 22 33 0"},  // filled in part
        {{3, 0, 0, 0, 0}, "3.000000", 3},                                   // an empty block
        {{0, 0, 1, 1, 2}, "0.000000", 0},                                   // no arguments
        {{0, 0, limit, 0, 0}, "0.000000", 0},                               // as large as it may be
        {{0, 9, 1, -9, 2}, "0.000000", 0},                                  // of no interest where
        {{3, 9, 0, -9, 0}, "3.000000", 3},
        {{0, 0, limit, 0, 1}, "refused", 0},  // too large
        {{1, 0, limit, 0, 1}, "refused"},
        {{1, 0, maximum, 0, maximum}, "refused"},  // sizes that overflow
        {{-1, 0, 1, 1, 2}, "refused"},             // negative
        {{1, -1, 1, 1, 2}, "refused"},
        {{1, 0, -1, 0, 2}, "refused"},
        {{1, 0, 3, 0, -1}, "refused"},
        {{1, 3, 1, 0, 2}, "refused"},  // types beyond the end
        {{1, 0, 1, 2, 2}, "refused"},  // data beyond the end
        {{1, 0, 1, maximum, 2}, "refused"},
    };
    const auto describe = [](auto parametersOf) -> std::string {
        try {
            std::string result;
            for (const std::string& entry : entries(parametersOf()))
                result += (result.empty() ? "" : ", ") + entry;
            return result.substr(result.find("numArguments ") + 13);
        } catch (const ZrAtlCom::CAtlException& exception) {
            return exception.hresult() == E_INVALIDARG ? "refused" : "failed otherwise";
        }
    };
    for (const Case& example : cases) {
        SCOPED_TRACE(&example - cases);
        FakeEventData data;
        data.argumentCount = example.count;
        data.layout = example.layout;
        data.block = {11, 22, 33};
        const auto live = [&] { return convert(data).payload(); };
        const auto logged = [&] { return convertLogged(data).payload().get_message().payload(); };
        EXPECT_EQ(describe(live), example.result);
        EXPECT_EQ(describe(logged), example.result);
    }
    FakeEventData data;
    data.layout = {1, 0, 0, 0, 0};
    EXPECT_THROW(convert(data), ZrAtlCom::CAtlException) << "no argument, and one in the block";
}

TEST_F(Conversion, MapsALiveAlarmAndALoggedOne) {
    struct Case {
        ULONG severity;
        ULONG confirmation;
        int cleared;
        int confirmed;
        const char* live;  ///< severity, confirmation, the event
        const char* logged;
        bool requiresConfirmation = false;
    };
    // Raised at 5.
    const Case cases[] = {
        {0, 0, 0, 0, "0 0 5s alarm 7", "0 0 5s invalid 7"},
        {1, 1, 6, 0, "1 1 5s alarm 7 cleared 6s", "1 4 5s alarm 7 cleared 6s", true},
        {2, 2, 5, 9, "2 2 5s alarm 7 confirmed 9s", "2 3 5s alarm 7 cleared 5s confirmed 9s", true},
        {3, 3, 4, 4, "3 3 5s alarm 7 confirmed 4s", "3 0 5s alarm 7 cleared 4s confirmed 4s"},
        {4, 4, 6, 7, "4 4 5s alarm 7 cleared 6s confirmed 7s",
         "4 0 5s alarm 7 cleared 6s confirmed 7s"},
        {7, 9, 0, 0, "1 0 5s alarm 7", "1 0 5s invalid 7"},
    };
    const auto describe = [](const Event& event) {
        const Alarm alarm = event.payload().get_alarm();
        EXPECT_EQ(event.name().view(), "ZREVENTLOGGER_ALARM");
        EXPECT_EQ(event.domain().view(), "Domain");
        EXPECT_EQ(alarm.domain().view(), "Domain");
        return std::to_string(static_cast<int>(alarm.severity())) + " " +
               std::to_string(static_cast<int>(alarm.confirmation_state())) + " " + textOf(event);
    };
    for (const Case& example : cases) {
        FakeEventData data;
        data.type = LoggedEventType::alarm;
        data.severity = example.severity;
        data.confirmationState = example.confirmation;
        data.raised = at(5);
        data.cleared = example.cleared == 0 ? 0 : at(example.cleared);
        data.confirmed = example.confirmed == 0 ? 0 : at(example.confirmed);
        data.requiresConfirmation = example.requiresConfirmation;
        EXPECT_EQ(describe(eventOf(convert(data))), example.live);
        EXPECT_EQ(describe(convertLogged(data)), example.logged);
    }
    // The host cannot hold these times, but the logger knows which is later.
    for (const std::uint64_t raised : {1ULL, ~0ULL - 1}) {
        FakeEventData data;
        data.raised = raised;
        data.cleared = raised + 1;
        EXPECT_TRUE(convert(data).time_cleared().isset());
        std::swap(data.raised, data.cleared);
        EXPECT_FALSE(convert(data).time_cleared().isset());
    }
    Alarm alarm = convert({});
    FakeEvent source(border);
    toHostAlarm(alarm, source, context, 8, true);
    EXPECT_EQ(alarm.id(), 7);

    FakeEventData data;
    const Event message = convertLogged(data);
    EXPECT_EQ(message.name().view(), "ZREVENTLOGGER_MESSAGE");
    EXPECT_EQ(textOf(message), "1s message");
    data.type = static_cast<LoggedEventType>(2);
    const Event other = convertLogged(data);
    EXPECT_FALSE(other.payload().isset());
}

TEST(Times, SaturateAndKeepZero) {
    const auto nanoseconds = [](std::uint64_t time) {
        return toTimestamp(toFileTime(time)).nanoseconds();
    };
    EXPECT_EQ(nanoseconds(0), 0);
    EXPECT_EQ(nanoseconds(at(1) + 1), 1'000'000'100);
    EXPECT_EQ(nanoseconds(1), std::numeric_limits<std::int64_t>::min());
    for (const std::uint64_t late : {0x7FFF'FFFF'FFFF'FFFFULL, 0x8000'0000'0000'0000ULL, ~0ULL})
        EXPECT_EQ(nanoseconds(late), std::numeric_limits<std::int64_t>::max());
}

}  // namespace
