#include <functional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host/Event.h"

namespace ZrHmiSrv {
namespace {

Alarm sample() {
    Alarm alarm;
    alarm.set_name("TankOverflow");
    alarm.set_domain("plant");
    alarm.set_time_received(Timestamp(1));
    alarm.set_session(Session("de-DE"));
    alarm.payload().insert("level", 98.5);
    alarm.set_id(7);
    alarm.set_severity(Severity::error);
    alarm.set_time_raised(Timestamp(2));
    return alarm;
}

TEST(EventTest, AnUnsetHandleAnswersDefaults) {
    const Alarm alarm;
    const Message message;
    EXPECT_FALSE(alarm.isset());
    EXPECT_STREQ(alarm.name().c_str(), "");
    EXPECT_STREQ(alarm.session().locale(), "");
    EXPECT_FALSE(alarm.payload().isset());
    EXPECT_EQ(alarm.id(), 0);
    EXPECT_FALSE(alarm.is_active());
    EXPECT_FALSE(message.time_raised().isset());
    EXPECT_EQ(message.severity(), Severity::verbose);
}

TEST(EventTest, AnAlarmStaysAnAlarmInEveryHandle) {
    const Alarm alarm = sample();
    const Event sliced = alarm;
    Event carrier;
    carrier.set_payload(sliced);
    Event changed = sliced;
    changed.set_name("Renamed");
    Event fromDefault = Alarm();
    fromDefault.set_name("NamedLater");

    EXPECT_EQ(Value(sliced).type(), ValueType::alarm);
    EXPECT_EQ(Value(alarm).get_event().payload(), alarm.payload());
    EXPECT_EQ(carrier.payload().get_alarm().id(), 7);
    EXPECT_EQ(Value(changed).get_alarm().severity(), Severity::error);
    EXPECT_EQ(Value(fromDefault).type(), ValueType::alarm);
    EXPECT_FALSE(Value(alarm).get_message().isset());
    EXPECT_EQ(Value(carrier).type(), ValueType::event);
    EXPECT_FALSE(Value(carrier).get_alarm().isset());
}

TEST(EventTest, AnAssignmentThroughTheBaseKeepsWhatBothKindsHave) {
    Alarm alarm = sample();
    Message message;
    message.set_name("Started");
    message.set_severity(Severity::critical);
    static_cast<Event&>(alarm) = message;
    EXPECT_EQ(alarm.severity(), Severity::verbose);
    EXPECT_EQ(alarm.id(), 0);
    alarm.set_id(3);
    EXPECT_EQ(alarm.id(), 3);
    EXPECT_STREQ(alarm.name().c_str(), "Started");
    EXPECT_EQ(Value(alarm).get_alarm().id(), 3);
}

TEST(EventTest, ChangingACopyLeavesTheOriginal) {
    const std::pair<const char*, std::function<void(Alarm&)>> changes[] = {
        {"name", [](Alarm& alarm) { alarm.set_name("Other"); }},
        {"domain", [](Alarm& alarm) { alarm.set_domain("other"); }},
        {"received", [](Alarm& alarm) { alarm.set_time_received(Timestamp(9)); }},
        {"session", [](Alarm& alarm) { alarm.set_session({}); }},
        {"payload", [](Alarm& alarm) { alarm.set_payload(1); }},
        {"in place", [](Alarm& alarm) { alarm.payload()["level"] = 1; }},
        {"id", [](Alarm& alarm) { alarm.set_id(8); }},
        {"severity", [](Alarm& alarm) { alarm.set_severity(Severity::info); }},
        {"raised", [](Alarm& alarm) { alarm.set_time_raised(Timestamp(9)); }},
        {"cleared", [](Alarm& alarm) { alarm.set_time_cleared(Timestamp(9)); }},
        {"confirmed", [](Alarm& alarm) { alarm.set_time_confirmed(Timestamp(9)); }},
        {"state", [](Alarm& alarm) { alarm.set_alarm_state(AlarmState::invalid); }},
        {"confirmation",
         [](Alarm& alarm) { alarm.set_confirmation_state(AlarmConfirmationState::pending); }},
    };
    for (const auto& [what, change] : changes) {
        SCOPED_TRACE(what);
        const Alarm original = sample();
        Alarm copy = original;
        const Value value = copy;
        change(copy);
        EXPECT_EQ(Value(original), Value(sample()));
        EXPECT_EQ(value, Value(sample()));
        EXPECT_FALSE(Value(copy) == Value(original));
    }
}

TEST(EventTest, APayloadReferenceStaysPrivateToItsHandle) {
    const std::pair<const char*, std::function<Event(const Alarm&)>> copies[] = {
        {"event", [](const Alarm& alarm) { return Event(alarm); }},
        {"assigned",
         [](const Alarm& alarm) {
             Event event;
             event = alarm;
             return event;
         }},
        {"value", [](const Alarm& alarm) { return Value(alarm).get_event(); }},
        {"carried",
         [](const Alarm& alarm) {
             Event carrier;
             carrier.set_payload(alarm);
             return Event(carrier).payload().get_event();
         }},
    };
    for (const auto& [how, copy] : copies) {
        SCOPED_TRACE(how);
        Alarm alarm = sample();
        Value& level = alarm.payload()["level"];
        const Event taken = copy(alarm);
        level = 1;
        EXPECT_EQ(*alarm.payload().lookup("level"), Value(1));
        EXPECT_EQ(*taken.payload().lookup("level"), Value(98.5));
    }
}

// Neither the alarm itself nor its parameters are copied for a carrier that nobody changes.
TEST(EventTest, CopiesShareTheirPayloads) {
    Event carrier;
    carrier.set_payload(sample());
    const Event copy = carrier;
    EXPECT_EQ(&copy.payload(), &std::as_const(carrier).payload());

    carrier.payload() = 1;
    carrier.set_payload(copy.payload());
    const Event again = carrier;
    EXPECT_EQ(&again.payload(), &std::as_const(carrier).payload());
    carrier.set_name("Raised");
    EXPECT_EQ(copy.payload().get_event().payload().lookup("level"),
              std::as_const(carrier).payload().get_event().payload().lookup("level"));
}

TEST(EventTest, AnAlarmIsActiveUntilItIsClearedOrInvalid) {
    Alarm alarm = sample();
    EXPECT_TRUE(alarm.is_active());
    alarm.set_alarm_state(AlarmState::invalid);
    EXPECT_FALSE(alarm.is_active());
    alarm.set_alarm_state(AlarmState::standard);
    alarm.set_time_cleared(Timestamp(5));
    EXPECT_FALSE(alarm.is_active());
}

TEST(EventTest, HandlesCanBeMovedFromAndSwapped) {
    Alarm alarm = sample();
    const Alarm moved = std::move(alarm);
    alarm.set_name("Again");
    EXPECT_EQ(Value(alarm).type(), ValueType::alarm);
    EXPECT_EQ(moved.id(), 7);

    Message message;
    message.set_severity(Severity::info);
    Event other = moved;
    other.swap(message);
    EXPECT_EQ(Value(other).get_message().severity(), Severity::info);
    EXPECT_EQ(Value(message).get_alarm().id(), 7);
}

}  // namespace
}  // namespace ZrHmiSrv
