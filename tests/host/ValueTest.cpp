// Maps, vectors and events. Copies share their content until one of them changes, and nobody can
// tell except by the cost.
#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host/Event.h"

namespace ZrHmiSrv {
namespace {

constexpr std::size_t first = 0;

/// {"a": {"x": 1}, "v": [1]}
Value sample() {
    Value value(ValueType::map);
    value["a"]["x"] = 1;
    value["v"] = Value(ValueType::vector) << 1;
    return Value(value);
}

using Content = std::vector<std::pair<std::string, int>>;

Content contentOf(const Value& map) {
    Content result;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        result.emplace_back(entry.name(), static_cast<int>(*entry));
    return result;
}

// Twenty-four names: the map grows beyond what is searched one by one and shrinks again.
TEST(ValueMap, RandomChangesFollowTheModel) {
    std::mt19937 random(20);
    Value map(ValueType::map);
    Content model;
    for (int step = 0; step < 5000; ++step) {
        const bool growing = step % 500 < 250;
        const unsigned kind = random() % 4 == 0 ? (growing ? 0 : 3) : random() % 4;
        const std::string name = "name" + std::to_string(random() % 24);
        const auto entry = std::find_if(model.begin(), model.end(),
                                        [&](const auto& known) { return known.first == name; });
        const bool exists = entry != model.end();
        const Value copy = map;
        const Content before = model;
        if (kind == 0)
            EXPECT_EQ(map.insert(name.c_str(), step), !exists);
        else if (kind == 1)
            map.insert_or_update(name.c_str(), step);
        else if (kind == 2)
            map[name.c_str()] = step;
        else if (exists)
            map.remove(map.find(name.c_str()));

        if (exists && kind == 3)
            model.erase(entry);
        else if (exists && kind != 0)
            entry->second = step;
        else if (!exists && kind != 3)
            model.emplace_back(name, step);
        ASSERT_EQ(contentOf(map), model) << "step " << step;
        ASSERT_EQ(contentOf(copy), before) << "step " << step;
        ASSERT_EQ(map.lookup(name) != nullptr, kind != 3) << "step " << step;
    }
}

TEST(ValueVector, ElementsKeepTheirPlacesAndOthersAreRefused) {
    Value vector = Value(ValueType::vector) << 2 << 4;
    vector.insert(vector.begin_vector(), 1);
    vector.insert(vector.find(std::size_t{2}), 3);
    EXPECT_EQ(vector, Value(ValueType::vector) << 1 << 2 << 3 << 4);
    EXPECT_THROW(vector[std::size_t{4}], std::out_of_range);
    EXPECT_THROW(vector["a"], std::logic_error);
    EXPECT_THROW(Value(1) << 1, std::logic_error);
}

TEST(ValueSharing, WritingThroughAnEarlierReferenceDoesNotReachALaterCopy) {
    const std::function<Value&(Value&)> accesses[] = {
        [](Value& value) -> Value& { return value["a"]; },
        [](Value& value) -> Value& { return *value.begin(); },
        [](Value& value) -> Value& { return *value.find("a"); },
        [](Value& value) -> Value& { return value["a"]["x"]; },
        [](Value& value) -> Value& { return value["v"][first]; },
        [](Value& value) -> Value& { return *value["v"].begin_vector(); },
        [](Value& value) -> Value& { return *value.remove(value.begin()); },
    };
    for (const auto& access : accesses) {
        SCOPED_TRACE(&access - accesses);
        Value original = sample();
        Value& reference = access(original);
        const Value copy = original;
        const Value element = Value(ValueType::vector) << original;
        const Value before = Value(ValueType::vector) << copy;
        reference = "written";
        EXPECT_FALSE(original == copy);
        EXPECT_EQ(element, before);
    }
}

TEST(ValueSharing, AValueCanHoldACopyOfItselfAndNestDeeply) {
    Value value = sample();
    value["self"] = value;
    EXPECT_EQ(*value.lookup("self")->lookup("a"), *sample().lookup("a"));
    value = std::move(value["a"]);
    EXPECT_EQ(*value.lookup("x"), Value(1));
    Value renamed(ValueType::map);
    renamed["y"] = 1;
    EXPECT_FALSE(renamed == value);
    for (int depth = 0; depth < 100'000; ++depth) {
        Value outer;
        outer << std::move(value);
        value = std::move(outer);
    }
    value.clear();
    EXPECT_TRUE(value.empty()) << "and no stack overflow";
}

Alarm sampleAlarm() {
    Alarm alarm;
    alarm.set_name("TankOverflow");
    alarm.payload().insert("level", 98.5);
    alarm.set_id(7);
    alarm.set_severity(Severity::error);
    return alarm;
}

TEST(EventSharing, AnAlarmStaysAnAlarmInEveryHandle) {
    const Event sliced = sampleAlarm();
    Event carrier;
    carrier.set_payload(sliced);
    Event changed = sliced;
    changed.set_name("Renamed");
    EXPECT_EQ(carrier.payload().get_alarm().id(), 7);
    EXPECT_EQ(Value(changed).get_alarm().severity(), Severity::error);
    EXPECT_FALSE(Value(changed).get_message().isset());
}

TEST(EventSharing, ChangingACopyLeavesTheOriginal) {
    const std::function<void(Alarm&)> changes[] = {
        [](Alarm& alarm) { alarm.set_name("Other"); },
        [](Alarm& alarm) { alarm.payload()["level"] = 1; },
        [](Alarm& alarm) { alarm.set_severity(Severity::info); },
        [](Alarm& alarm) { alarm.set_time_cleared(Timestamp(9)); },
    };
    for (const auto& change : changes) {
        SCOPED_TRACE(&change - changes);
        const Alarm original = sampleAlarm();
        Alarm copy = original;
        change(copy);
        EXPECT_EQ(Value(original), Value(sampleAlarm()));
        EXPECT_FALSE(Value(copy) == Value(original));
    }
    Alarm alarm = sampleAlarm();
    Value& level = alarm.payload()["level"];
    const Event copy = alarm;
    Event carrier;
    carrier.set_payload(alarm);
    level = 1;
    EXPECT_EQ(*alarm.payload().lookup("level"), Value(1));
    EXPECT_EQ(*copy.payload().lookup("level"), Value(98.5)) << "taken after the reference";
    EXPECT_EQ(*carrier.payload().get_event().payload().lookup("level"), Value(98.5));
}

// Meant for the thread sanitizer too: counters and first changes of shared content meet.
TEST(ValueSharing, ThreadsChangeTheirCopiesIndependently) {
    const Value original = sample();
    std::vector<std::thread> running;
    for (int i = 0; i < 4; ++i) {
        running.emplace_back([&original, i] {
            for (int round = 0; round < 2000; ++round) {
                Value mine = original;
                mine["a"]["x"] = i;
                ASSERT_EQ(*mine.lookup("a")->lookup("x"), Value(i));
            }
        });
    }
    for (std::thread& thread : running)
        thread.join();
    EXPECT_EQ(original, sample());
}

}  // namespace
}  // namespace ZrHmiSrv
