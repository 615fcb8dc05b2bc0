#include <chrono>
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "target/ConnectedLookup.h"
#include "target/TextLookup.h"

using namespace bridge_test;
using namespace ZrHmiEventLogger;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::Value;

namespace {

constexpr LCID english = 0x0409;
constexpr LCID german = 0x0407;

/// The event of the plant that has every kind of text, with one argument.
EventReference hotTank(char temperature = 95) {
    using namespace std::string_literals;
    return {ZrAtlCom::parseGuid(eventClass), 1, "Tank", bytes("\3\0"s),
            bytes(std::string{temperature, 0, 0, 0})};
}

TEST(TextLookup, AsksTheLoggerOnceForEachText) {
    ConnectedLookup target;
    for (int round = 0; round < 2; ++round) {
        const auto text = [&](const EventReference& event, LCID language) {
            return target.lookup.eventText(event, language).value.get_string();
        };
        EXPECT_EQ(text(hotTank(), english), "Temperature 95 too high");
        EXPECT_EQ(text(hotTank(), german), "Temperatur 95 zu hoch");
        EXPECT_EQ(text(hotTank(96), english), "Temperature 96 too high");
        EXPECT_EQ(target.lookup.eventClassName(hotTank(), german).value.get_string(), "Maschine");
        EXPECT_EQ(target.lookup.sourceName(hotTank(), german).value.get_string(), "Behälter");
        const Translation untranslated = target.lookup.sourceName(hotTank(), english);
        EXPECT_EQ(untranslated.result, ErrorValue::success);
        EXPECT_FALSE(untranslated.value.isset());
        const Value guidance = target.lookup.guidance(hotTank(), english).value;
        const Value remedy = guidance.get_map().get("causeRemedy").get_vector().get(0);
        EXPECT_EQ(remedy.get_map().get("id").get_string(), "a");
        EXPECT_EQ(remedy.get_map().get("cause").get_string(), "Pump off");
        EXPECT_EQ(remedy.get_map().get("remedy").get_string(), "Start it");
        const Value detail = guidance.get_map().get("details").get_map().get("k");
        EXPECT_EQ(detail.get_map().get("text").get_string(), "Detail");
        EXPECT_EQ(detail.get_map().get("comment").get_string(), "More");
    }
    EXPECT_EQ(target.calls("GetEventText"), 3);
    EXPECT_EQ(target.calls("GetEventClassName"), 1);
    EXPECT_EQ(target.calls("GetSourceName"), 2);
    EXPECT_EQ(target.calls("GetCauseRemedy"), 1);
    EXPECT_EQ(target.calls("GetDetails"), 1);
    EXPECT_EQ(target.calls("IsConnected"), 7) << "asked on a miss only";
    EXPECT_EQ(target.lookup.cacheStatistics().hits, 7u);
    EXPECT_EQ(target.lookup.cacheStatistics().misses, 7u);

    EventReference nameless = hotTank();
    nameless.sourceName = {};
    nameless.eventId = 2;
    EXPECT_EQ(target.lookup.guidance(nameless, english).value,
              Value(ZrHmiSrv::ValueType::structure));
    EXPECT_FALSE(target.lookup.sourceName(nameless, german).value.isset());
    EXPECT_EQ(target.calls("GetSourceName"), 2) << "there is no name to translate";

    target.lookup.clearCache();
    target.lookup.eventText(hotTank(), english);
    EXPECT_EQ(target.calls("GetEventText"), 4);
}

TEST(TextLookup, WithoutAConnectionOnlyTheCacheAnswers) {
    ConnectedLookup target;
    ASSERT_EQ(target.lookup.eventText(hotTank(), english).result, ErrorValue::success);
    const auto expectMissing = [&](const char* why) {
        const Translation missing = target.lookup.eventText(hotTank(), german);
        EXPECT_EQ(missing.result, ErrorValue::not_connected);
        EXPECT_EQ(missing.result.text().view(), why);
        EXPECT_EQ(target.lookup.eventText(hotTank(), english).result, ErrorValue::success);
    };
    target.disabled = true;
    expectMissing("Connection disabled.");
    target.disabled = false;
    target.simulation.act(R"({"do": "drop"})");
    expectMissing("Not connected.");
    EXPECT_EQ(target.calls("GetEventText"), 1);
    EXPECT_TRUE(target.logging.takeReports().empty());
}

TEST(TextLookup, KeepsNothingThatTheProxyPreloadsNorWhatIsTooLarge) {
    ConnectedLookup target;
    target.logging.preload = true;
    target.lookup.eventText(hotTank(), english);
    target.logging.preload = false;
    target.lookup.eventText(hotTank(), english);
    EXPECT_EQ(target.calls("GetEventText"), 2);
    target.lookup.eventText(hotTank(), english);
    EXPECT_EQ(target.calls("GetEventText"), 2);

    using namespace std::string_literals;
    const std::string length("\x00\x20\x00\x00", 4);  // 8192 bytes of text
    EventReference large = hotTank();
    large.types = bytes("\x08\x00"s);
    large.data = bytes(length + std::string(8192, 'x'));
    for (std::int64_t count = 3; count < 5; ++count) {
        EXPECT_EQ(target.lookup.eventText(large, english).value.size(), 8192u + 21);
        EXPECT_EQ(target.calls("GetEventText"), count);
    }
}

TEST(TextLookup, HoldsNothingWhileTheLoggerAnswers) {
    ConnectedLookup target;
    target.lookup.eventClassName(hotTank(), english);
    target.simulation.act(R"({"do": "pause", "call": "GetEventText"})");
    const auto ask = [&] { return target.lookup.eventText(hotTank(), english); };
    auto first = std::async(std::launch::async, ask);
    auto second = std::async(std::launch::async, ask);
    while (target.lookup.cacheStatistics().misses < 3 || target.calls("GetEventText") < 1)
        std::this_thread::yield();

    EXPECT_EQ(target.lookup.eventClassName(hotTank(), english).value.get_string(), "Machine");
    EXPECT_EQ(target.lookup.eventClassName(hotTank(), german).value.get_string(), "Maschine");
    EXPECT_EQ(target.lookup.requireConnection(), ErrorValue::success);
    target.lookup.clearCache();
    target.simulation.act(R"({"do": "resume"})");
    EXPECT_EQ(first.get().value.get_string(), "Temperature 95 too high");
    EXPECT_EQ(second.get().value.get_string(), "Temperature 95 too high");
    EXPECT_EQ(target.calls("GetEventText"), 1);
    ask();
    EXPECT_EQ(target.calls("GetEventText"), 2) << "an import came between question and answer";
}

}  // namespace
