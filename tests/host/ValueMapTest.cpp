#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host/Value.h"

namespace ZrHmiSrv {
namespace {

using Model = std::vector<std::pair<std::string, int>>;

Model content(const Value& map) {
    Model result;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        result.emplace_back(entry.name(), static_cast<int>(*entry));
    return result;
}

auto find(Model& model, const std::string& name) {
    return std::find_if(model.begin(), model.end(),
                        [&](const auto& entry) { return entry.first == name; });
}

/// One of the changes that a map knows, done to the map and to its model.
void change(Value& map, Model& model, unsigned kind, const std::string& name, int value) {
    const auto found = find(model, name);
    const bool exists = found != model.end();
    switch (kind) {
        case 0:
            EXPECT_EQ(map.insert(name.c_str(), value), !exists);
            if (!exists)
                model.emplace_back(name, value);
            break;
        case 1:
            map.insert_or_update(name.c_str(), value);
            exists ? void(found->second = value) : void(model.emplace_back(name, value));
            break;
        case 2:
            map[name.c_str()] = value;
            exists ? void(found->second = value) : void(model.emplace_back(name, value));
            break;
        default:
            if (!exists)
                break;
            const auto next = model.erase(found);
            const auto position = map.remove(map.find(name.c_str()));
            ASSERT_EQ(position == map.end(), next == model.end());
            if (next != model.end()) {
                EXPECT_EQ(position.name(), next->first);
            }
    }
}

// Twenty-four names: the map grows beyond what is searched one by one and shrinks again.
TEST(ValueMapTest, RandomChangesFollowTheModel) {
    std::mt19937 random(20);
    Value map(ValueType::map);
    Model model;
    for (int step = 0; step < 5000; ++step) {
        const bool growing = step % 500 < 250;
        const unsigned kind = random() % 4 == 0 ? (growing ? 0 : 3) : random() % 4;
        const std::string name = "name" + std::to_string(random() % 24);
        const Value before = map;
        const Model modelBefore = model;
        change(map, model, kind, name, step);

        ASSERT_EQ(content(map), model) << "step " << step;
        ASSERT_EQ(content(before), modelBefore) << "step " << step;
        const Value* found = map.lookup(name);
        ASSERT_EQ(found != nullptr, find(model, name) != model.end());
        if (found) {
            ASSERT_EQ(static_cast<int>(*found), find(model, name)->second);
        }
    }
}

TEST(ValueMapTest, FindsEachOfManyNames) {
    constexpr int count = 100'000;
    Value map;
    map.reserve(count);
    for (int i = 0; i < count; ++i)
        ASSERT_TRUE(map.insert(std::to_string(i).c_str(), i));
    Value copy = map;
    copy.insert_or_update("0", 0);
    for (int i = 0; i < count; ++i) {
        const Value* found = copy.lookup(std::to_string(i));
        ASSERT_NE(found, nullptr);
        ASSERT_EQ(static_cast<int>(*found), i);
    }
    EXPECT_EQ(copy.lookup("100000"), nullptr);
}

TEST(ValueMapTest, ChangingNoneMakesAStructureAndAnyOtherTypeThrows) {
    Value none;
    none["a"] = 1;
    EXPECT_EQ(none.type(), ValueType::structure);

    for (Value value : {Value(1), Value("text"), Value(ValueType::vector)}) {
        const Value before = value;
        EXPECT_THROW(value["a"], std::logic_error);
        EXPECT_THROW(value.insert("a", 1), std::logic_error);
        EXPECT_THROW(value.insert_or_update("a", 1), std::logic_error);
        EXPECT_EQ(value, before);
    }
}

TEST(ValueMapTest, ReadingWhatIsNoMapFindsNothing) {
    for (Value value : {Value(), Value(1), Value("text"), Value(ValueType::map)}) {
        EXPECT_EQ(value.lookup("a"), nullptr);
        EXPECT_TRUE(value.find("a") == value.end());
        EXPECT_TRUE(value.begin() == value.end());
        EXPECT_FALSE(value.get_map().get("a").isset());
    }
}

TEST(ValueMapTest, EqualityIsDeepAndOrdered) {
    const auto pair = [](const char* first, Value a, const char* second, Value b) {
        Value map(ValueType::map);
        map.insert(first, std::move(a));
        map.insert(second, std::move(b));
        return map;
    };
    Value structure = pair("a", 1, "b", Value(ValueType::vector) << "x" << 2);
    structure.set_type(ValueType::structure);
    EXPECT_EQ(pair("a", 1, "b", Value(ValueType::vector) << "x" << 2), structure);

    const Value others[] = {
        pair("b", Value(ValueType::vector) << "x" << 2, "a", 1),
        pair("a", 1, "c", Value(ValueType::vector) << "x" << 2),
        pair("a", 1, "b", Value(ValueType::vector) << "x"),
        pair("a", 1, "b", Value(ValueType::vector) << "x" << 3),
        pair("a", 1LL, "b", Value(ValueType::vector) << "x" << 2),
        Value(ValueType::structure),
        Value(ValueType::vector),
    };
    for (const Value& other : others)
        EXPECT_FALSE(structure == other);
}

}  // namespace
}  // namespace ZrHmiSrv
