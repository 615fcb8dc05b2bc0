#include <gtest/gtest.h>

#include "extension/LoadedExtension.h"
#include "support/Simulation.h"

using namespace bridge_test;
using namespace ZrHmiSrv;

namespace {

class Configuration : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(loaded.init(), ErrorValue::success);
        ASSERT_TRUE(host.waitFor([&] { return host.count("reset") == 1; }));
    }

    static Value entry(Value address, Value enabled) {
        Value fields(ValueType::map);
        fields.insert_or_update("ADDRESS", std::move(address));
        fields.insert_or_update("ENABLED", std::move(enabled));
        return fields;
    }
    ErrorValue set(const char* path) {
        ResultPair result;
        loaded.listener<IZrHmiSrvConfigListener>()->value_set(result, loaded.context, path);
        return result.result();
    }
    /// Makes it the entry of "Filler" and tells so.
    ErrorValue set(Value filler) {
        host.look([&] { host.configuration["TARGET_SYSTEMS"]["Filler"] = std::move(filler); });
        return set("TARGET_SYSTEMS::Filler");
    }
    ErrorValue remove(const char* path) {
        ResultPair result;
        loaded.listener<IZrHmiSrvConfigListener>()->value_deleted(result, loaded.context, path);
        return result.result();
    }
    /// Since the first import.
    std::size_t resets() {
        std::size_t count = 0;
        host.look([&] { count = host.count("reset") - 1; });
        return count;
    }
    std::string state() { return loaded.diagnostics("Filler", "connectionState"); }

    Simulation simulation;
    RecordingHost host{RecordingHost::configurationFor({{"Filler", fillerNetId}})};
    LoadedExtension loaded{host};
};

TEST_F(Configuration, WhatCannotBeUsedLeavesTheRunningTargetAlone) {
    const auto settings = simulation.calls("ConnectWithSettings");
    EXPECT_EQ(set("TARGET_SYSTEMS"), ErrorValue::success);
    EXPECT_EQ(set("TARGET_SYSTEMS::Filler::ADDRESS"), ErrorValue::success);
    EXPECT_EQ(set("OTHERS::Filler"), ErrorValue::unknown_command);
    EXPECT_EQ(remove("OTHERS::Filler"), ErrorValue::unknown_command);
    EXPECT_EQ(remove("TARGET_SYSTEMS::Nobody"), ErrorValue::success);
    EXPECT_EQ(set("TARGET_SYSTEMS::Nobody"), ErrorValue::invalid_configuration);
    EXPECT_EQ(set(Value(5)), ErrorValue::invalid_configuration);
    EXPECT_EQ(set(Value(ValueType::map)), ErrorValue::invalid_configuration);
    EXPECT_EQ(set(entry(5, true)), ErrorValue::invalid_configuration);
    EXPECT_EQ(set(entry(fillerNetId, "yes")), ErrorValue::invalid_configuration);
    EXPECT_EQ(set(entry(fillerNetId, true)), ErrorValue::success) << "as it was";

    simulation.act(R"({"do": "fail", "call": "SetTimeout", "hresult": "0x80004005"})");
    EXPECT_EQ(set(entry(packerNetId, true)), ErrorValue::operation_failed);
    host.look([&] { host.configuration.insert_or_update("TIMEOUT", "PT5S"); });
    EXPECT_EQ(set(entry(packerNetId, true)), ErrorValue::invalid_configuration);
    EXPECT_EQ(state(), "Good");
    EXPECT_EQ(simulation.calls("ConnectWithSettings"), settings);
    EXPECT_EQ(resets(), 0U);
}

TEST_F(Configuration, AChangedEntryIsAnotherTarget) {
    EXPECT_EQ(set(entry(fillerNetId, false)), ErrorValue::success);
    EXPECT_EQ(resets(), 1U);
    EXPECT_EQ(state(), "Not Connected");
    EXPECT_EQ(simulation.status().at("connected"), false);

    simulation.raise("before");
    host.look([&] { host.configuration.insert_or_update("LIMIT_EVENT_COUNT", 2.9); });
    EXPECT_EQ(set(entry(packerNetId, true)), ErrorValue::success);
    EXPECT_EQ(state(), "Good");
    EXPECT_TRUE(host.waitFor([&] { return host.logged("LOGGED_EVENTS_IMPORTED") == 2; }));
    simulation.act(
        R"({"do": "message", "count": 5, "event": 3, "class": ")" + std::string(eventClass) + "\"}",
        packerNetId);
    EXPECT_TRUE(host.waitFor([&] { return host.messages.size() == 2; })) << "the new limit";
    EXPECT_EQ(simulation.liveObjects(), 0) << "of the former runtime";

    const std::size_t before = resets();
    EXPECT_EQ(remove("TARGET_SYSTEMS::Filler"), ErrorValue::success);
    EXPECT_GT(resets(), before);
    EXPECT_EQ(state(), "");
    EXPECT_EQ(simulation.liveObjects(packerNetId), 0);
    EXPECT_EQ(loaded.command("ForceReconnect", "Filler").extension_result(), 292U);
}

TEST_F(Configuration, EachCommandOfAGroupIsAnswered) {
    CommandGroup group({Command("1", "ClearLoggedEvents", "Filler"),
                        Command("2", "ForceReconnect", 5), Command("3", "forceReconnect"),
                        Command("4", "ListEnabledTargetSystems"), Command("5", "Diagnostics")});
    loaded.listener<IZrHmiSrvRequestListener>()->handle(loaded.context, group);
    std::vector<unsigned> results;
    for (auto command = group.begin_vector(); command != group.end_vector(); ++command)
        results.push_back(command->extension_result());
    EXPECT_EQ(results, (std::vector<unsigned>{292, 292, 293, 0, 0}));
    const Value filler = (group.end_vector() - 1)->read_value().get_map().get("TARGET_SYSTEMS");
    std::string keys;
    const Value fields = filler.get_map().get("Filler");
    for (auto field = fields.begin(); field != fields.end(); ++field)
        keys += std::string(field.name()) + " ";
    EXPECT_EQ(keys,
              "connectionState importedEventsCount importedAlarmsCount importedInvalidAlarmsCount "
              "importedMessagesCount activeAlarmsCount cachedAlarmsCount "
              "cachedInvalidAlarmsCount cachedMessagesCount ");
}

}  // namespace
