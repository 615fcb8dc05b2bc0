#include <gmock/gmock.h>

#include "localization/EventLocalizer.h"
#include "localization/LocalizableItem.h"
#include "targetsystem/ConnectedLookup.h"

using namespace bridge_test;
using namespace ZrHmiSrv;
using testing::ElementsAre;
using ZrHmiEventLogger::EventLocalizer;
using ZrHmiEventLogger::TextLookup;

namespace {

Value hotTank() {
    Value parameters(ValueType::structure);
    parameters.insert("targetName", "Filler");
    parameters.insert("eventClass", eventClass);
    parameters.insert("eventId", 1.0);
    parameters.insert("sourceName", "Tank");
    parameters.insert("numArguments", 1.0);
    parameters.insert("types", bytes({3, 0}));
    parameters.insert("data", bytes({95, 0, 0, 0}));
    return parameters;
}

class EventLocalizerTest : public testing::Test {
protected:
    ResultPair localize(const char* locale, LocalizableItem& item) {
        text.set_name("before");
        return localizer.localize(locale, item, text);
    }

    ConnectedLookup target;
    EventLocalizer localizer{[this](std::string_view name) {
        return std::shared_ptr<TextLookup>(std::shared_ptr<void>(),
                                           name == "Filler" ? &target.lookup : nullptr);
    }};
    String text;
};

TEST_F(EventLocalizerTest, WritesWhatIsKnownInTheLanguageAndAsksForItOnce) {
    for (const auto kind : {ILocalizable::Kind::alarm, ILocalizable::Kind::message}) {
        LocalizableItem item(hotTank(), kind);
        EXPECT_EQ(localize("de_DE", item), ErrorValue::success);
        EXPECT_EQ(text.name().view(), "Temperatur 95 zu hoch");
        EXPECT_EQ(item.get("eventClassName"), Value("Maschine"));
        EXPECT_EQ(item.get("localizedSourceName"), Value("Behälter"));
        const auto remedy = item.get("causeRemedy").get_vector().get(0).get_map();
        EXPECT_EQ(remedy.get("id"), Value("a"));
        EXPECT_EQ(remedy.get("cause"), Value("Pump off"));
        EXPECT_EQ(remedy.get("remedy"), Value("Start it"));
        const auto detail = item.get("details").get_map().get("k").get_map();
        EXPECT_EQ(detail.get("text"), Value("Detail"));
        EXPECT_EQ(detail.get("comment"), Value("More"));
        EXPECT_EQ(item.get("data"), *hotTank().lookup("data"));
    }
    for (const char* operation :
         {"GetEventText", "GetEventClassName", "GetSourceName", "GetCauseRemedy", "GetDetails"})
        EXPECT_EQ(target.simulation.calls(operation), 1) << operation;
}

TEST_F(EventLocalizerTest, AddsOnlyWhatThereIsAndReplacesWhatWasThere) {
    Value parameters = hotTank();
    parameters.insert_or_update("eventId", 2.0);
    parameters.insert("eventClassName", 5);
    LocalizableItem item(parameters);
    EXPECT_EQ(localize("en-US", item), ErrorValue::success);
    EXPECT_EQ(text.name().view(), "Door open");
    parameters.insert_or_update("eventClassName", "Machine");
    EXPECT_EQ(item.parameters(), parameters);

    LocalizableItem ofNoTarget{Value(ValueType::structure)};
    EXPECT_EQ(localize("en-US", ofNoTarget), ErrorValue::success);
    EXPECT_EQ(text.name().view(), "its own text");
    EXPECT_EQ(ofNoTarget.parameters().size(), 1u);
    EXPECT_EQ(ofNoTarget.get("eventClassName"), Value(""));
}

TEST_F(EventLocalizerTest, WritesNothingForWhatItCannotLocalize) {
    using enum ErrorValue;
    constexpr const char* exception = "An exception was raised.";
    constexpr const char* noTarget = "TARGET_NOT_FOUND";
    const struct {
        const char* locale;
        int kind;
        const char* key;  ///< of the parameter that differs
        Value value;
        ErrorValue result;
        const char* text;
    } cases[] = {
        {"xx_YY", 65, "x", 0, request_failed, ""},
        {nullptr, 67, "x", 0, request_failed, ""},
        {"de-DE", 67, "x", 0, unsupported_item, ""},
        {"de-DE", 65, "targetName", "Packer", unknown_target_system, noTarget},
        {"de-DE", 65, "targetName", 1, unknown_target_system, noTarget},
        {"de-DE", 65, "eventClass", "{0000ABCD}", request_failed, exception},
        {"de-DE", 65, "eventId", 4294967297.0, request_failed, exception},
        {"de-DE", 65, "data", bytes("x"), request_failed, exception},  // makes no sense
    };
    for (const auto& refused : cases) {
        SCOPED_TRACE(&refused - cases);
        Value parameters = hotTank();
        parameters.insert_or_update(refused.key, refused.value);
        LocalizableItem item(parameters, static_cast<ILocalizable::Kind>(refused.kind));
        const ResultPair result = localize(refused.locale, item);
        EXPECT_EQ(result, refused.result);
        EXPECT_EQ(result.text().view(), refused.text);
        EXPECT_EQ(text.name().view(), "before");
        EXPECT_EQ(item.parameters(), parameters);
    }
}

TEST_F(EventLocalizerTest, WritesNothingAndReportsWhenACallFailsAndAsksAnewNextTime) {
    for (const char* operation : {"IsConnected", "GetEventText", "GetEventClassName",
                                  "GetSourceName", "GetCauseRemedy", "GetDetails", "GetItem"}) {
        SCOPED_TRACE(operation);
        target.lookup.clearCache();
        target.simulation.act(R"({"do": "fail", "hresult": "0x80004005", "call": ")" +
                              std::string(operation) + "\"}");
        LocalizableItem item(hotTank());
        const ResultPair result = localize("de-DE", item);
        EXPECT_EQ(result, ErrorValue::request_failed);
        EXPECT_EQ(result.text().view(), "An exception was raised.");
        EXPECT_EQ(text.name().view(), "before");
        EXPECT_EQ(item.parameters(), hotTank());
        EXPECT_THAT(target.logging.take(), ElementsAre("error Filler"));
        EXPECT_EQ(localize("de-DE", item), ErrorValue::success);
        EXPECT_TRUE(target.logging.take().empty());
    }
}

}  // namespace
