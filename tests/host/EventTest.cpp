#include <functional>
#include <utility>

#include <gtest/gtest.h>

#include "host/Event.h"

namespace ZrHmiSrv {
namespace {

Alarm sample() {
    Alarm alarm;
    alarm.set_name("TankOverflow");
    alarm.payload().insert("level", 98.5);
    alarm.set_id(7);
    alarm.set_severity(Severity::error);
    return alarm;
}

TEST(EventTest, AnAlarmStaysAnAlarmInEveryHandle) {
    const Event sliced = sample();
    Event carrier;
    carrier.set_payload(sliced);
    Event changed = sliced;
    changed.set_name("Renamed");
    EXPECT_EQ(carrier.payload().get_alarm().id(), 7);
    EXPECT_EQ(Value(changed).get_alarm().severity(), Severity::error);
    EXPECT_FALSE(Value(changed).get_message().isset());
}

TEST(EventTest, ChangingACopyLeavesTheOriginal) {
    const std::pair<const char*, std::function<void(Alarm&)>> changes[] = {
        {"name", [](Alarm& alarm) { alarm.set_name("Other"); }},
        {"in place", [](Alarm& alarm) { alarm.payload()["level"] = 1; }},
        {"severity", [](Alarm& alarm) { alarm.set_severity(Severity::info); }},
        {"cleared", [](Alarm& alarm) { alarm.set_time_cleared(Timestamp(9)); }},
    };
    for (const auto& [what, change] : changes) {
        SCOPED_TRACE(what);
        const Alarm original = sample();
        Alarm copy = original;
        change(copy);
        EXPECT_EQ(Value(original), Value(sample()));
        EXPECT_FALSE(Value(copy) == Value(original));
    }
}

TEST(EventTest, APayloadReferenceStaysPrivateToItsHandle) {
    Alarm alarm = sample();
    Value& level = alarm.payload()["level"];
    const Event copy = alarm;
    Event carrier;
    carrier.set_payload(alarm);
    level = 1;
    EXPECT_EQ(*alarm.payload().lookup("level"), Value(1));
    EXPECT_EQ(*copy.payload().lookup("level"), Value(98.5));
    EXPECT_EQ(*carrier.payload().get_event().payload().lookup("level"), Value(98.5));
}

}  // namespace
}  // namespace ZrHmiSrv
