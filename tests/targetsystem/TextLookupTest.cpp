#include <gtest/gtest.h>

#include "targetsystem/ConnectedLookup.h"
#include "targetsystem/proxy/Guid.h"

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
            return target.lookup.eventText(event, language).value;
        };
        EXPECT_EQ(text(hotTank(), english), Value("Temperature 95 too high"));
        EXPECT_EQ(text(hotTank(), german), Value("Temperatur 95 zu hoch"));
        EXPECT_EQ(text(hotTank(96), english), Value("Temperature 96 too high"));
        const Translation untranslated = target.lookup.sourceName(hotTank(), english);
        EXPECT_EQ(untranslated.result, ErrorValue::success);
        EXPECT_FALSE(untranslated.value.isset());
        EventReference nameless = hotTank();
        nameless.sourceName = {};
        EXPECT_FALSE(target.lookup.sourceName(nameless, german).value.isset());
    }
    EXPECT_EQ(target.simulation.calls("GetEventText"), 3);
    EXPECT_EQ(target.simulation.calls("GetSourceName"), 1) << "only if there is one to translate";
    EXPECT_EQ(target.simulation.calls("IsConnected"), 4) << "asked on a miss only";
    EXPECT_EQ(target.lookup.cacheStatistics().hits, 4u);
    EXPECT_EQ(target.lookup.cacheStatistics().misses, 4u);
    EventReference mute = hotTank();
    mute.sourceName = "Mute";
    EXPECT_FALSE(target.lookup.sourceName(mute, german).value.isset()) << "it would hide the name";
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
    EXPECT_EQ(target.simulation.calls("GetEventText"), 1);
    EXPECT_TRUE(target.logging.take().empty());
}

TEST(TextLookup, KeepsNothingThatTheProxyPreloadsNorWhatIsTooLarge) {
    ConnectedLookup target;
    const auto ask = [&](char temperature) {
        for (int round = 0; round < 2; ++round)
            target.lookup.eventText(hotTank(temperature), english);
        return target.simulation.calls("GetEventText");
    };
    target.logging.preload = true;
    EXPECT_EQ(ask(1), 1) << "switched on, but nothing was loaded ahead yet";
    target.connect(true);
    EXPECT_EQ(ask(2), 3);
    target.logging.preload = false;
    EXPECT_EQ(ask(3), 4);

    using namespace std::string_literals;
    const std::string length("\x00\x20\x00\x00", 4);  // 8192 bytes of text
    EventReference large = hotTank();
    large.types = bytes("\x08\x00"s);
    large.data = bytes(length + std::string(8192, 'x'));
    for (std::int64_t count = 5; count < 7; ++count) {
        EXPECT_EQ(target.lookup.eventText(large, english).value.size(), 8192u + 21);
        EXPECT_EQ(target.simulation.calls("GetEventText"), count);
    }
}

}  // namespace
