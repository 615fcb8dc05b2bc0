#include <algorithm>
#include <random>
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
    if (kind == 0)
        EXPECT_EQ(map.insert(name.c_str(), value), !exists);
    else if (kind == 1)
        map.insert_or_update(name.c_str(), value);
    else if (kind == 2)
        map[name.c_str()] = value;
    else if (exists)
        map.remove(map.find(name.c_str()));

    if (exists && kind == 3)
        model.erase(found);
    else if (exists && kind != 0)
        found->second = value;
    else if (!exists && kind != 3)
        model.emplace_back(name, value);
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
        ASSERT_EQ(map.lookup(name) != nullptr, find(model, name) != model.end());
    }
}

}  // namespace
}  // namespace ZrHmiSrv
