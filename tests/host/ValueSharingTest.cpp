// Copies share their content until one of them changes, and nobody can tell except by the cost.
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host/Event.h"
#include "host/Value.h"

namespace ZrHmiSrv {
namespace {

constexpr std::size_t first = 0;

/// {"a": {"x": 1}, "v": [1]}
Value sample() {
    Value inner(ValueType::map);
    inner.insert("x", 1);
    Value value(ValueType::map);
    value.insert("a", std::move(inner));
    value.insert("v", Value(ValueType::vector) << 1);
    return value;
}

TEST(ValueSharingTest, WritingThroughAnEarlierReferenceDoesNotReachALaterCopy) {
    using Access = std::function<Value&(Value&)>;
    const std::pair<const char*, Access> accesses[] = {
        {"name", [](Value& value) -> Value& { return value["a"]; }},
        {"begin", [](Value& value) -> Value& { return *value.begin(); }},
        {"find", [](Value& value) -> Value& { return *value.find("a"); }},
        {"nested name", [](Value& value) -> Value& { return value["a"]["x"]; }},
        {"index", [](Value& value) -> Value& { return value["v"][first]; }},
        {"begin of vector", [](Value& value) -> Value& { return *value["v"].begin_vector(); }},
        {"position", [](Value& value) -> Value& { return *value["v"].find(first); }},
        {"after an update",
         [](Value& value) -> Value& {
             Value& reference = value["a"];
             value.insert_or_update("v", 2);
             value.insert("v", 3);
             return reference;
         }},
        {"after a removal", [](Value& value) -> Value& { return *value.remove(value.begin()); }},
        {"after an insertion",
         [](Value& value) -> Value& {
             return *value["v"].insert(value["v"].begin_vector(), Value(5));
         }},
    };
    using Copy = std::function<Value(const Value&)>;
    const std::pair<const char*, Copy> copies[] = {
        {"copied", [](const Value& value) { return value; }},
        {"assigned",
         [](const Value& value) {
             Value copy(3);
             copy = value;
             return copy;
         }},
        {"as an element", [](const Value& value) { return Value(ValueType::vector) << value; }},
        {"as a payload",
         [](const Value& value) {
             Event event;
             event.set_payload(value);
             return event.payload();
         }},
        {"of a copy",
         [](const Value& value) {
             const Value copy = value;
             return copy;
         }},
    };
    for (const auto& [how, access] : accesses) {
        for (const auto& [copied, copy] : copies) {
            SCOPED_TRACE(std::string(how) + ", " + copied);
            Value original = sample();
            Value& reference = access(original);
            const Value taken = copy(original);
            const Value untouched = copy(Value(original));
            const Value before = original;
            reference = "written";
            EXPECT_FALSE(original == before);
            EXPECT_EQ(taken, untouched);
        }
    }
}

TEST(ValueSharingTest, ChangingACopyLeavesTheOriginal) {
    const std::pair<const char*, std::function<void(Value&)>> changes[] = {
        {"insert", [](Value& value) { value.insert("b", 1); }},
        {"update", [](Value& value) { value.insert_or_update("a", 1); }},
        {"name", [](Value& value) { value["a"] = 1; }},
        {"nested", [](Value& value) { value["a"]["x"] = 2; }},
        {"iterator", [](Value& value) { *++value.begin() = 2; }},
        {"remove", [](Value& value) { value.remove(value.begin()); }},
        {"clear", [](Value& value) { value.clear(); }},
        {"append", [](Value& value) { value["v"] << 2; }},
        {"insert element",
         [](Value& value) { value["v"].insert(value["v"].begin_vector(), Value(2)); }},
        {"resize", [](Value& value) { value["v"].resize(2); }},
        {"index", [](Value& value) { value["v"][first] = 2; }},
        {"type", [](Value& value) { value.set_type(ValueType::vector); }},
        {"moved out", [](Value& value) { const Value taken = std::move(value["a"]); }},
    };
    for (const auto& [how, change] : changes) {
        SCOPED_TRACE(how);
        const Value original = sample();
        Value copy = original;
        change(copy);
        EXPECT_EQ(original, sample());
        EXPECT_FALSE(copy == original);
    }
}

TEST(ValueSharingTest, CopiesShareUnlessAReferenceIsOut) {
    const auto share = [](const Value& a, const Value& b) {
        return a.lookup("v") == b.lookup("v");
    };
    Value value = sample();
    EXPECT_TRUE(share(value, Value(value)));

    value["a"] = 2;
    const Value copy = value;
    EXPECT_FALSE(share(value, copy));
    EXPECT_TRUE(share(copy, Value(copy)));

    value.insert("b", 1);
    EXPECT_TRUE(share(value, Value(value)));

    value["a"] = 3;
    const Value moved = std::move(value);
    EXPECT_TRUE(share(moved, Value(moved)));
}

TEST(ValueSharingTest, AValueCanHoldACopyOfItself) {
    Value value = sample();
    value["self"] = value;
    EXPECT_EQ(*value.lookup("self")->lookup("a"), *sample().lookup("a"));
    value.insert("again", value);
    EXPECT_EQ(value.lookup("again")->size(), 3u);
    value = Value(value["a"]);
    EXPECT_EQ(value, *sample().lookup("a"));
    value = std::move(value["x"]);
    EXPECT_EQ(value, Value(1));

    Value vector = Value(ValueType::vector) << 1;
    vector << vector << vector[first];
    EXPECT_EQ(vector.size(), 3u);
    EXPECT_EQ(vector[std::size_t{1}], Value(ValueType::vector) << 1);
}

TEST(ValueSharingTest, DepthDoesNotEndInAStackOverflow) {
    constexpr int depth = 100'000;
    Value value;
    for (int i = 0; i < depth; ++i) {
        Value outer;
        if (i % 2 == 0)
            outer.insert("inner", std::move(value));
        else
            outer << 1 << std::move(value);
        value = std::move(outer);
    }
    const Value copy = value;
    value.clear();
    EXPECT_EQ(copy.size(), 2u);
}

// Meant for the thread sanitizer too: counters and first changes of shared content meet.
TEST(ValueSharingTest, ThreadsChangeTheirCopiesIndependently) {
    constexpr int threads = 4;
    constexpr int rounds = 2000;
    const Value original = sample();
    Alarm alarm;
    alarm.set_payload(original);
    std::vector<Value> results(threads);
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i) {
        running.emplace_back(
            [&original, &alarm, &result = results[static_cast<std::size_t>(i)], i] {
                for (int round = 0; round < rounds; ++round) {
                    Value mine = original;
                    const Value kept = mine;
                    mine["a"]["x"] = i;
                    Alarm own = alarm;
                    own.set_id(i);
                    own.payload().insert_or_update("v", kept);
                    mine.insert("alarm", own);
                    result = mine;
                }
            });
    }
    for (std::thread& thread : running)
        thread.join();

    EXPECT_EQ(original, sample());
    EXPECT_EQ(alarm.payload(), sample());
    for (int i = 0; i < threads; ++i) {
        const Value& result = results[static_cast<std::size_t>(i)];
        EXPECT_EQ(*result.lookup("a")->lookup("x"), Value(i));
        EXPECT_EQ(result.lookup("alarm")->get_alarm().id(), i);
    }
}

// The last two owners part at the same time: one of them changes in place, the other lets go.
TEST(ValueSharingTest, TheLastOwnersMayPartOnTwoThreads) {
    for (int round = 0; round < 500; ++round) {
        Value kept = sample();
        Value given = kept;
        std::thread other([given = std::move(given)]() mutable {
            EXPECT_EQ(*given.lookup("a")->lookup("x"), Value(1));
            given = Value();
        });
        kept["a"]["x"] = 2;
        kept.insert_or_update("v", 3);
        other.join();
        EXPECT_EQ(*kept.lookup("a")->lookup("x"), Value(2));
    }
}

}  // namespace
}  // namespace ZrHmiSrv
