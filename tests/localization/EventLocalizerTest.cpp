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

TEST_F(EventLocalizerTest, WritesNothingWhenAnyStepFails) {
    struct Case {
        const char* what;
        const char* locale;
        ILocalizable::Kind kind;
        const char* key;  ///< of the parameter that differs
        Value value;
        const char* failingCall;
        ErrorValue result;
        const char* text;
    };
    constexpr auto alarm = ILocalizable::Kind::alarm;
    constexpr auto message = ILocalizable::Kind::message;
    constexpr auto otherKind = static_cast<ILocalizable::Kind>(67);
    constexpr const char* exceptionText = "An exception was raised.";
    using enum ErrorValue;
    const Case cases[] = {
        {"unknown locale", "xx_YY", alarm, "x", 0, "", request_failed, ""},
        {"no locale", nullptr, otherKind, "x", 0, "", request_failed, ""},
        {"unknown kind", "de-DE", otherKind, "x", 0, "", unsupported_item, ""},
        {"unknown target", "de-DE", alarm, "targetName", "Packer", "", unknown_target_system,
         "TARGET_NOT_FOUND"},
        {"target of a wrong type", "de-DE", alarm, "targetName", 1, "", unknown_target_system,
         "TARGET_NOT_FOUND"},
        {"class is no GUID", "de-DE", alarm, "eventClass", "{0000ABCD}", "", request_failed,
         exceptionText},
        {"id out of range", "de-DE", alarm, "eventId", 4294967297.0, "", request_failed,
         exceptionText},
        {"arguments make no sense", "de-DE", alarm, "data", bytes("x"), "", request_failed,
         exceptionText},
        {"text", "de-DE", message, "x", 0, "GetEventText", request_failed, exceptionText},
        {"class name", "de-DE", alarm, "x", 0, "GetEventClassName", request_failed, exceptionText},
        {"source", "de-DE", message, "x", 0, "GetSourceName", request_failed, exceptionText},
        {"remedies", "de-DE", alarm, "x", 0, "GetCauseRemedy", request_failed, exceptionText},
        {"details", "de-DE", message, "x", 0, "GetDetails", request_failed, exceptionText},
    };
    for (const Case& failing : cases) {
        SCOPED_TRACE(failing.what);
        Value parameters = hotTank();
        parameters.insert_or_update(failing.key, failing.value);
        if (*failing.failingCall)
            target.fail(failing.failingCall);
        LocalizableItem item(parameters, failing.kind);
        const ResultPair result = localize(failing.locale, item);
        EXPECT_EQ(result, failing.result);
        EXPECT_EQ(result.text().view(), failing.text);
        EXPECT_EQ(text.name().view(), "before");
        EXPECT_EQ(item.parameters(), parameters);
    }
}

}  // namespace
