// Copies share their content until one of them changes, and nobody can tell except by the cost.
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host/Value.h"

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

TEST(ValueSharingTest, WritingThroughAnEarlierReferenceDoesNotReachALaterCopy) {
    const std::pair<const char*, std::function<Value&(Value&)>> accesses[] = {
        {"name", [](Value& value) -> Value& { return value["a"]; }},
        {"begin", [](Value& value) -> Value& { return *value.begin(); }},
        {"find", [](Value& value) -> Value& { return *value.find("a"); }},
        {"nested name", [](Value& value) -> Value& { return value["a"]["x"]; }},
        {"index", [](Value& value) -> Value& { return value["v"][first]; }},
        {"begin of vector", [](Value& value) -> Value& { return *value["v"].begin_vector(); }},
        {"removal", [](Value& value) -> Value& { return *value.remove(value.begin()); }},
    };
    for (const auto& [how, access] : accesses) {
        SCOPED_TRACE(how);
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

TEST(ValueSharingTest, AValueCanHoldACopyOfItself) {
    Value value = sample();
    value["self"] = value;
    EXPECT_EQ(*value.lookup("self")->lookup("a"), *sample().lookup("a"));
    value = std::move(value["a"]);
    EXPECT_EQ(*value.lookup("x"), Value(1));
}

TEST(ValueSharingTest, DepthDoesNotEndInAStackOverflow) {
    Value value;
    for (int i = 0; i < 100'000; ++i) {
        Value outer;
        outer << std::move(value);
        value = std::move(outer);
    }
    value.clear();
    EXPECT_TRUE(value.empty());
}

// Meant for the thread sanitizer too: counters and first changes of shared content meet.
TEST(ValueSharingTest, ThreadsChangeTheirCopiesIndependently) {
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
