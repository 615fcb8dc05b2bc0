#include <thread>

#include <gtest/gtest.h>

#include "extension/LoadedExtension.h"
#include "robustness/Eventually.h"
#include "support/Simulation.h"

using namespace bridge_test;
using namespace ZrHmiSrv;

namespace {

class Configuration : public testing::Test {
protected:
    void SetUp() override {
        host.insideSlot = [this](const std::string& call) {
            if (call != "log CALL_CONFIRM")
                return;
            slow = true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            slow = false;
        };
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

    int number(const char* name) {
        const Value targets =
            loaded.command("Diagnostics").read_value().get_map().get("TARGET_SYSTEMS");
        return static_cast<int>(targets.get_map().get("Filler").get_map().get(name));
    }

    Simulation simulation;
    RecordingHost host{RecordingHost::configurationFor({{"Filler", fillerNetId}})};
    std::atomic<bool> slow = false;  ///< the host is just being told of a confirmation
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
    simulation.act(R"({"do": "pause", "call": "SetTimeout"})");
    host.look([&] { host.configuration.insert_or_update("TIMEOUT", Timespan()); });
    EXPECT_EQ(set(entry(packerNetId, true)), ErrorValue::operation_failed) << "it hangs";
    simulation.act(R"({"do": "resume"})");
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

    for (const double limit : {4294967296.0, 1e300}) {
        host.look([&] { host.configuration.insert_or_update("LIMIT_EVENT_COUNT", limit); });
        EXPECT_EQ(set(entry(packerNetId, limit > 1e10)), ErrorValue::success);
        EXPECT_TRUE(eventually([&] { return number("cachedMessagesCount") == 5; })) << limit;
    }

    const std::size_t before = resets();
    EXPECT_EQ(remove("TARGET_SYSTEMS::Filler"), ErrorValue::success);
    EXPECT_GT(resets(), before);
    EXPECT_EQ(state(), "");
    EXPECT_EQ(simulation.liveObjects(packerNetId), 0);
    EXPECT_EQ(loaded.command("ForceReconnect", "Filler").extension_result(), 292U);
}

TEST_F(Configuration, ARemovedTargetIsHeardNoMore) {
    simulation.raise("hot");
    ASSERT_TRUE(host.waitFor([&] { return host.alarms.contains(1); }));
    std::thread confirming([&] {
        Alarm alarm;
        host.look([&] { alarm = host.alarms[1]; });
        loaded.confirm(alarm);
    });
    EXPECT_TRUE(eventually([&] { return slow.load(); }));
    EXPECT_EQ(remove("TARGET_SYSTEMS::Filler"), ErrorValue::success);
    EXPECT_FALSE(slow) << "it was just being told";
    confirming.join();
}

TEST_F(Configuration, AResetIsOwedUntilTheHostWasTold) {
    host.look([&] { host.refusedResets = 2; });
    EXPECT_EQ(remove("TARGET_SYSTEMS::Filler"), ErrorValue::success) << "it has taken effect";
    EXPECT_TRUE(host.waitFor([&] { return host.count("reset") == 2; }));
}

TEST_F(Configuration, AChangeThatHangsKeepsNoOtherWaiting) {
    simulation.act(R"({"do": "pause", "call": "Disconnect"})");
    std::thread removing([&] { remove("TARGET_SYSTEMS::Filler"); });
    while (simulation.calls("Disconnect") == 0)
        std::this_thread::yield();
    const auto setPacker = [&](const char* address, Timespan timeout) {
        host.look([&] {
            host.configuration["TARGET_SYSTEMS"]["Packer"] = entry(address, true);
            host.configuration.insert_or_update("TIMEOUT", timeout);
        });
        EXPECT_EQ(set("TARGET_SYSTEMS::Packer"), ErrorValue::success);
    };
    setPacker(packerNetId, Timespan::from_milliseconds(600'000));
    EXPECT_EQ(loaded.diagnostics("Packer", "connectionState"), "Good");
    EXPECT_EQ(state(), "") << "removed at once";
    simulation.act(R"({"do": "resume"})");
    removing.join();

    // One of a shorter time-out does not give up what its former may still answer.
    simulation.act(R"({"do": "pause", "call": "IsConnected"})", packerNetId);
    const auto checks = simulation.calls("IsConnected", packerNetId);
    EXPECT_TRUE(eventually([&] { return simulation.calls("IsConnected", packerNetId) > checks; }));
    const auto connects = simulation.calls("ConnectWithSettings");
    const std::size_t before = resets();
    std::thread replacing([&] { setPacker(fillerNetId, Timespan()); });
    EXPECT_TRUE(eventually([&] { return resets() > before; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(simulation.calls("ConnectWithSettings"), connects);
    simulation.act(R"({"do": "resume"})", packerNetId);
    replacing.join();
    EXPECT_EQ(loaded.diagnostics("Packer", "connectionState"), "Good");
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
}

TEST(Diagnostics, TellsEachNumberOfItsOwn) {
    const auto logged = [](int event, int second, const char* more = "") {
        return R"({"class": ")" + std::string(eventClass) + R"(", "event": )" +
               std::to_string(event) + R"(, "timeRaised": "2024-05-01T12:00:0)" +
               std::to_string(second) + "Z\"" + more + "}";
    };
    const char* const cleared = R"(, "timeCleared": "2024-05-01T13:00:00Z")";
    std::string log = logged(3, 0);
    for (int second = 1; second <= 3; ++second)
        log += "," + logged(1, second);
    for (int second = 4; second <= 6; ++second)
        log += "," + logged(2, second, cleared);
    Simulation simulation("[" + log + "]");
    simulation.raise("one");
    simulation.raise("two");
    RecordingHost host(RecordingHost::configurationFor({{"Filler", fillerNetId}}));
    host.configuration.insert_or_update("LIMIT_EVENT_COUNT", 15);
    LoadedExtension loaded(host);
    ASSERT_EQ(loaded.init(), ErrorValue::success);
    ASSERT_TRUE(host.waitFor([&] { return host.logged("LOGGED_EVENTS_IMPORTED") == 1; }));
    // They push out the oldest three: the message and two of the alarms without an end.
    simulation.act(R"({"do": "message", "count": 9, "event": 3, "class": ")" +
                   std::string(eventClass) + "\"}");
    ASSERT_TRUE(host.waitFor([&] { return host.logged("FORGET_EVENT") == 3; }));

    const Value targets =
        loaded.command("Diagnostics").read_value().get_map().get("TARGET_SYSTEMS");
    const Value filler = targets.get_map().get("Filler");
    std::vector<std::pair<std::string, int>> numbers;
    for (auto field = filler.begin(); field != filler.end(); ++field)
        if (field->is_number())
            numbers.emplace_back(field.name(), static_cast<int>(*field));
    EXPECT_EQ(numbers, (std::vector<std::pair<std::string, int>>{{"importedEventsCount", 18},
                                                                 {"importedAlarmsCount", 8},
                                                                 {"importedInvalidAlarmsCount", 3},
                                                                 {"importedMessagesCount", 10},
                                                                 {"activeAlarmsCount", 2},
                                                                 {"cachedAlarmsCount", 6},
                                                                 {"cachedInvalidAlarmsCount", 1},
                                                                 {"cachedMessagesCount", 9}}));
}

}  // namespace
