#include <gtest/gtest.h>

#include "localization/EventLocalizer.h"
#include "localization/LocalizableItem.h"
#include "target/ConnectedLookup.h"

using namespace bridge_test;
using namespace ZrHmiSrv;
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

TEST_F(EventLocalizerTest, WritesWhatIsKnownInTheLanguage) {
    for (const auto kind : {ILocalizable::Kind::alarm, ILocalizable::Kind::message}) {
        LocalizableItem item(hotTank(), kind);
        EXPECT_EQ(localize("de_DE", item), ErrorValue::success);
        EXPECT_EQ(text.name().view(), "Temperatur 95 zu hoch");
        EXPECT_EQ(item.get("eventClassName").get_string(), "Maschine");
        EXPECT_EQ(item.get("localizedSourceName").get_string(), "Behälter");
        const Value cause = item.get("causeRemedy").get_vector().get(0).get_map().get("cause");
        EXPECT_EQ(cause.get_string(), "Pump off");
        EXPECT_EQ(item.get("details").get_map().get("k").get_map().get("text").get_string(),
                  "Detail");
        EXPECT_EQ(item.get("data"), *hotTank().lookup("data"));
    }
    EXPECT_EQ(target.calls("GetEventText"), 1) << "a message has the text of an alarm";
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
}

TEST_F(EventLocalizerTest, AnEventOfNoTargetKeepsItsText) {
    LocalizableItem item{Value(ValueType::structure)};
    EXPECT_EQ(localize("en-US", item), ErrorValue::success);
    EXPECT_EQ(text.name().view(), "its own text");
    Value expected(ValueType::structure);
    expected.insert("eventClassName", "");
    EXPECT_EQ(item.parameters(), expected);
}

TEST_F(EventLocalizerTest, WritesNothingForWhatItCannotLocalize) {
    struct Case {
        const char* what;
        const char* locale;
        int kind;
        const char* key;  ///< of the parameter that differs
        Value value;
        ErrorValue result;
        const char* text;
    };
    constexpr const char* exceptionText = "An exception was raised.";
    using enum ErrorValue;
    const Case cases[] = {
        {"unknown locale", "xx_YY", 65, "x", 0, request_failed, ""},
        {"no locale", nullptr, 67, "x", 0, request_failed, ""},
        {"unknown kind", "de-DE", 67, "x", 0, unsupported_item, ""},
        {"unknown target", "de-DE", 65, "targetName", "Packer", unknown_target_system,
         "TARGET_NOT_FOUND"},
        {"target of a wrong type", "de-DE", 65, "targetName", 1, unknown_target_system,
         "TARGET_NOT_FOUND"},
        {"class is no GUID", "de-DE", 65, "eventClass", "{0000ABCD}", request_failed,
         exceptionText},
        {"id out of range", "de-DE", 65, "eventId", 4294967297.0, request_failed, exceptionText},
        {"arguments make no sense", "de-DE", 65, "data", bytes("x"), request_failed, exceptionText},
    };
    for (const Case& refused : cases) {
        SCOPED_TRACE(refused.what);
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
        target.fail(operation);
        LocalizableItem item(hotTank());
        const ResultPair result = localize("de-DE", item);
        EXPECT_EQ(result, ErrorValue::request_failed);
        EXPECT_EQ(result.text().view(), "An exception was raised.");
        EXPECT_EQ(text.name().view(), "before");
        EXPECT_EQ(item.parameters(), hotTank());
        EXPECT_EQ(target.logging.takeReports(), std::vector<std::string>{"Filler"});
        EXPECT_EQ(localize("de-DE", item), ErrorValue::success);
        EXPECT_TRUE(target.logging.takeReports().empty());
    }
}

}  // namespace
