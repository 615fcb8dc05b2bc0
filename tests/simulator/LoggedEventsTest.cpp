#include <gmock/gmock.h>

#include "simulator/SimulatorFixture.h"

using namespace ZrEventLoggerFnxProxyLib;
using testing::ElementsAre;
using ZrAtlCom::ComPtr;

namespace {

using LoggedEvent = ComPtr<IZrLoggedEvent>;

class LoggedEventsTest : public SimulatorFixture {
protected:
    /// Connects to a filler with this log.
    void load(const std::string& logged) {
        const auto answer = loadPlant(withQuotes(
            "{'runtimes': {'5.10.20.30.1.1': {'eventClasses': {'CLASS': {'events': {"
            " '7': {'kind': 'alarm', 'severity': 3, 'confirm': true}, '8': {'kind': 'alarm'},"
            " '20': {'kind': 'message', 'severity': 2}}}}, 'logged': " +
            logged + "}}}"));
        EXPECT_EQ(answer.result, 200) << answer.body;
        EXPECT_EQ(client.connect(), S_OK);
    }
    std::vector<LoggedEvent> newest(ULONG limit) {
        ComPtr<IZrLoggedEventCollection> collection;
        EXPECT_EQ(client.logger->GetLoggedEvents(limit, collection.put()), S_OK);
        ULONG count = 0;
        EXPECT_EQ(collection->get_Count(&count), S_OK);
        std::vector<LoggedEvent> events(count);
        for (ULONG i = 0; i < count; ++i)
            EXPECT_EQ(collection->get_Item(i, events[i].put()), S_OK);
        LoggedEvent none;
        EXPECT_EQ(collection->get_Item(count, none.put()), DISP_E_BADINDEX);
        return events;
    }
    /// The ids of the newest events, with "*" for those that are marked as active.
    std::vector<std::string> newestIds(ULONG limit) {
        std::vector<std::string> ids;
        for (const auto& event : newest(limit)) {
            ULONG id = 0;
            VARIANT_BOOL active = VARIANT_FALSE;
            EXPECT_EQ(event->get_EventId(&id), S_OK);
            EXPECT_EQ(event.query<IZrLoggedEvent2>()->get_IsActive(&active), S_OK);
            ids.push_back(std::to_string(id) + (active == VARIANT_TRUE ? "*" : ""));
        }
        return ids;
    }

    Client client;
};

TEST_F(LoggedEventsTest, AreTheNewestOldestFirst) {
    load(
        "[{'class': 'CLASS', 'event': 20, 'timeRaised': '2024-05-02T00:00:00Z'},"
        " {'class': 'CLASS', 'event': 7, 'timeRaised': '2024-05-01T00:00:00Z'},"
        " {'class': 'CLASS', 'event': 8, 'timeRaised': '2024-05-03T00:00:00Z'}]");
    EXPECT_THAT(newestIds(10), ElementsAre("7", "20", "8"));
    EXPECT_THAT(newestIds(2), ElementsAre("20", "8"));
    EXPECT_THAT(newestIds(0), ElementsAre());
    EXPECT_TRUE(client.activeAlarms().empty());  // history is never active

    apply(
        "[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7},"
        " {'do': 'raise', 'alarm': 'B', 'class': 'CLASS', 'event': 8,"
        "  'timeRaised': '2024-05-02T12:00:00Z'},"
        " {'do': 'message', 'class': 'CLASS', 'event': 20}]");
    EXPECT_THAT(newestIds(10), ElementsAre("7", "20", "8*", "8", "7*", "20"));
    apply("[{'do': 'clear', 'alarm': 'A'}, {'do': 'clear', 'alarm': 'B'}]");
    EXPECT_THAT(newestIds(4), ElementsAre("8", "8", "7*", "20"));
    apply("[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7}]");
    EXPECT_THAT(newestIds(2), ElementsAre("20", "7*"));  // raised again, it is the newest
}

TEST_F(LoggedEventsTest, TellTheWholeEvent) {
    load(
        "[{'class': 'CLASS', 'event': 7, 'timeRaised': '2024-05-01T00:00:00.5Z',"
        "  'timeCleared': '2024-05-01T00:00:01Z', 'timeConfirmed': '2024-05-01T00:00:02Z',"
        "  'source': {'id': 4000000000, 'guid': '0000abcd-1111-2222-3333-444455556666',"
        "             'name': 'Kessel \u00fc'},"
        "  'arguments': [true, -5, 2.5, 'x', 3000000000, 18446744073709551615],"
        "  'json': '{\\'a\\':1}'},"
        " {'class': 'CLASS', 'event': 20, 'timeRaised': '2024-05-02T00:00:00Z'}]");
    const auto events = newest(10);
    ULONG number = 0;
    LoggedEventType type{};
    VARIANT_BOOL flag = VARIANT_FALSE;
    FILETIME time{};
    ScopedBstr text;
    GUID guid{};

    const auto& alarm = events[0];
    EXPECT_EQ(alarm->get_EventType(&type), S_OK);
    EXPECT_EQ(type, LoggedEventType::alarm);
    EXPECT_EQ(alarm->get_Severity(&number), S_OK);
    EXPECT_EQ(number, 3u);
    EXPECT_EQ(alarm->get_RequiresConfirmation(&flag), S_OK);
    EXPECT_EQ(flag, VARIANT_TRUE);
    EXPECT_EQ(alarm->get_SourceId(&number), S_OK);
    EXPECT_EQ(number, 4000000000u);
    EXPECT_EQ(alarm->get_SourceGuid(&guid), S_OK);
    EXPECT_TRUE(guid == pumpClassId);
    EXPECT_EQ(alarm->get_SourceName(text.put()), S_OK);
    EXPECT_EQ(text.utf8(), "Kessel \xC3\xBC");
    EXPECT_EQ(alarm->get_TimeConfirmed(&time), S_OK);
    FILETIME cleared{};
    EXPECT_EQ(alarm->get_TimeCleared(&cleared), S_OK);
    EXPECT_EQ(time.dwLowDateTime - cleared.dwLowDateTime, 10'000'000u);
    EXPECT_EQ(alarm.query<IZrJsonAttribute>()->get_JsonAttribute(text.put()), S_OK);
    EXPECT_EQ(text.utf8(), R"({"a":1})");

    const auto& message = events[1];
    EXPECT_EQ(message->get_EventType(&type), S_OK);
    EXPECT_EQ(type, LoggedEventType::message);
    EXPECT_EQ(message->get_RequiresConfirmation(&flag), S_OK);
    EXPECT_EQ(flag, VARIANT_FALSE);
    for (const auto kind : {SourceAttribute::id, SourceAttribute::guid, SourceAttribute::name}) {
        EXPECT_EQ(message->HasSource(kind, &flag), S_OK);
        EXPECT_EQ(flag, VARIANT_FALSE);
        EXPECT_EQ(alarm->HasSource(kind, &flag), S_OK);
        EXPECT_EQ(flag, VARIANT_TRUE);
    }
    EXPECT_FALSE(message.query<IZrJsonAttribute>());
}

TEST_F(LoggedEventsTest, HandOverTheirArgumentsAsABlock) {
    load(
        "[{'class': 'CLASS', 'event': 8, 'timeRaised': '2024-05-01T00:00:00Z',"
        "  'arguments': [true, -2, 'ab', 0.5, -3000000000, 18446744073709551615]},"
        " {'class': 'CLASS', 'event': 8, 'timeRaised': '2024-05-02T00:00:00Z'}]");
    const auto arguments = newest(2)[0].query<IZrEventArguments>();
    ArgumentBlockLayout layout{};
    EXPECT_EQ(arguments->GetLayout(&layout), S_OK);
    EXPECT_EQ(layout.count, 6);
    EXPECT_EQ(layout.typesOffset, 0);
    EXPECT_EQ(layout.typesSize, 12);
    EXPECT_EQ(layout.dataOffset, 12);
    EXPECT_EQ(layout.dataSize, 36);
    std::vector<BYTE> block(48);
    EXPECT_EQ(arguments->GetBlock(block.data(), 47), E_INVALIDARG);
    EXPECT_EQ(arguments->GetBlock(block.data(), 48), S_OK);
    const std::vector<BYTE> expected{11,   0,    3,    0,    8,    0,    5,    0,
                                     20,   0,    21,   0,                             // types
                                     0xFF, 0xFF,                                      // true
                                     0xFE, 0xFF, 0xFF, 0xFF,                          // -2
                                     2,    0,    0,    0,    'a',  'b',               // "ab"
                                     0,    0,    0,    0,    0,    0,    0xE0, 0x3F,  // 0.5
                                     0x00, 0xA2, 0x2F, 0x4D, 0xFF, 0xFF, 0xFF, 0xFF,  // -3000000000
                                     0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};  // 2^64 - 1
    EXPECT_EQ(block, expected);

    EXPECT_EQ(newest(1)[0].query<IZrEventArguments>()->GetLayout(&layout), S_OK);
    EXPECT_EQ(layout.count + layout.typesSize + layout.dataSize, 0);
}

TEST_F(LoggedEventsTest, AreClearedFromEitherSide) {
    load("[{'class': 'CLASS', 'event': 8, 'timeRaised': '2024-05-01T00:00:00Z'}]");
    EXPECT_EQ(client.advise(), S_OK);
    EXPECT_EQ(client.logger->ClearLoggedEvents(), S_OK);
    EXPECT_THAT(newestIds(10), ElementsAre());
    apply(
        "[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7},"
        " {'do': 'clearLoggedEvents'}, {'do': 'clear', 'alarm': 'A'}]");
    EXPECT_THAT(newestIds(10), ElementsAre());
    EXPECT_EQ(client.activeAlarms().size(), 1u);
    EXPECT_THAT(client.sink.waitFor(4),
                ElementsAre("database 1", "raised 7", "database 1", "cleared 7"));
}

}  // namespace
