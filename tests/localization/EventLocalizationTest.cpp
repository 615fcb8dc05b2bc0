#include <stdexcept>

#include <gtest/gtest.h>

#include "localization/LocalizableItem.h"
#include "support/LoadedExtension.h"
#include "support/RecordingHost.h"
#include "support/Simulation.h"

using namespace bridge_test;
using namespace ZrHmiSrv;

namespace {

class EventLocalizationTest : public testing::Test {
protected:
    static Value configuration() {
        Value configuration = RecordingHost::configurationWithLimit(100);
        RecordingHost::addTarget(configuration, "Filler", fillerNetId);
        return configuration;
    }
    void SetUp() override { ASSERT_EQ(extension.init(), ErrorValue::success); }

    ErrorValue localize(ILocalizable& item) {
        return extension
            .listener<IZrHmiSrvEventLocalizationListener>(ListenerType::event_localization)
            .localize_event(extension.context, "de-DE", item, text);
    }
    std::int64_t textsAsked() {
        return simulation.status().at("calls").at("GetEventText").to_number<std::int64_t>();
    }

    Simulation simulation;
    RecordingHost host{configuration()};
    LoadedExtension extension{host};
    String text;
};

TEST_F(EventLocalizationTest, TranslatesTheAlarmsOfATargetAnewAfterItsImport) {
    simulation.act(std::string(R"({"do": "raise", "alarm": "hot", "event": 1, "arguments": [95.5],
        "source": {"name": "Tank"}, "class": ")") +
                   eventClass + "\"}");
    Alarm alarm;
    ASSERT_TRUE(host.waitFor([&] { return !host.alarms.empty(); }));
    host.look([&] { alarm = host.alarms.begin()->second; });
    LocalizableItem item(alarm.payload());
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(localize(item), ErrorValue::success);
        EXPECT_EQ(text.name().view(), "Temperatur 95.5 zu hoch");
        EXPECT_EQ(item.get("localizedSourceName").get_string(), "Behälter");
    }
    EXPECT_EQ(textsAsked(), 1);

    EXPECT_EQ(extension.command("ForceReconnect", "Filler").extension_result(), 0u);
    ASSERT_TRUE(host.waitFor([&] { return host.logged("LOGGED_EVENTS_IMPORTED") == 2; }));
    EXPECT_EQ(localize(item), ErrorValue::success);
    EXPECT_EQ(textsAsked(), 2);

    simulation.act(R"({"do": "fail", "call": "GetEventText", "hresult": "0x80004005"})");
    item.parameters().insert_or_update("eventId", 2);
    EXPECT_EQ(localize(item), ErrorValue::request_failed);
    host.look([&] {
        const Value report = host.lastLogged("CORVANE_EVENTLOGGER_ERROR").parameters();
        EXPECT_EQ(report.get_map().get("0").get_string(), "Filler");
        EXPECT_EQ(static_cast<double>(report.get_map().get("1")), -1.0);
        EXPECT_EQ(report.get_map().get("2").get_string(),
                  "An error occurred in the communication with the Corvane EventLogger.");
    });
    item.parameters().insert_or_update("targetName", "Packer");
    EXPECT_EQ(localize(item), ErrorValue::unknown_target_system);
}

TEST_F(EventLocalizationTest, NoExceptionLeaves) {
    LocalizableItem unwritable{Value(5)};
    EXPECT_EQ(localize(unwritable), ErrorValue::request_failed);
    EXPECT_TRUE(text.name().empty());
    EXPECT_EQ(unwritable.parameters(), Value(5));
}

}  // namespace
