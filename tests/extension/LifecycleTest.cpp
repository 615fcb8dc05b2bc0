#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "extension/LoadedExtension.h"
#include "localization/LocalizableItem.h"
#include "robustness/Eventually.h"
#include "support/Simulation.h"

using namespace bridge_test;
using namespace ZrHmiSrv;

namespace {

using Calls = std::vector<std::string>;

Value fillerAlone() {
    return RecordingHost::configurationFor({{"Filler", fillerNetId}});
}

TEST(Lifecycle, BeginsWithBothPlacesForItsResultsOnly) {
    RecordingHost host;
    IZrHmiSrvExt* extension = nullptr;
    double version = 0;
    EXPECT_EQ(ext_interface(&host, nullptr, &version), 0);
    EXPECT_EQ(ext_interface(&host, &extension, nullptr), 0);
    EXPECT_EQ(extension, nullptr);
    EXPECT_EQ(version, 0);
    EXPECT_EQ(ext_interface(nullptr, &extension, &version), 0);
    EXPECT_EQ(extension, nullptr);
    EXPECT_EQ(version, 22.0);
}

TEST(Lifecycle, CallsTheHostInItsOrder) {
    Simulation simulation;
    RecordingHost host(fillerAlone());
    {
        LoadedExtension loaded(host);
        EXPECT_EQ(loaded.init(), ErrorValue::success);
        ASSERT_TRUE(host.waitFor([&] { return host.count("reset") == 1; }));
        host.look([&] {
            // The first import may end before `init` or after it.
            Calls calls = std::exchange(host.calls, {});
            const Calls import{"log LOGGED_EVENTS_IMPORTED", "log RESET_TEMPORARY_EVENTS", "reset"};
            for (const std::string& call : import)
                EXPECT_EQ(std::erase(calls, call), 1U) << call;
            EXPECT_EQ(calls, (Calls{"announce Corvane EventLogger", "register alarm provider",
                                    "register event localization", "register shutdown",
                                    "register request", "log TARGET_SYSTEM_CONNECTED",
                                    "register with settings configuration"}));
            const Value settings = host.listenerSettings[std::size_t{0}];
            EXPECT_EQ(static_cast<int>(*settings.lookup("flags")), 48);
            EXPECT_EQ(settings.lookup("paths")->get_vector().get(0).get_string(),
                      "TARGET_SYSTEMS::*");
            EXPECT_EQ(host.log.front().domain().view(), "TestDomain");
            EXPECT_EQ(host.log.front().severity(), Severity::unspecified);
        });
        EXPECT_EQ(loaded.shutdown(), ErrorValue::success);
        EXPECT_EQ(simulation.liveObjects(), 0);
    }
    simulation.raise("late");
    host.look([&] {
        EXPECT_EQ(host.calls,
                  (Calls{"unregister alarm provider", "unregister event localization",
                         "unregister shutdown", "unregister request", "unregister configuration"}));
    });
}

TEST(Lifecycle, RefusesWithACode) {
    struct Case {
        Value configuration;
        const char* fault;  ///< for the simulated runtime
        ErrorValue result;
        std::string subject;
        std::string reason;
    };
    Value wrongTimeout = fillerAlone();
    wrongTimeout.insert_or_update("TIMEOUT", "PT5S");
    const char* const refuseTimeout =
        R"({"do": "fail", "call": "SetTimeout", "hresult": "0x80004005"})";
    using enum ErrorValue;
    const Case cases[] = {
        {{}, "[]", invalid_configuration, "Corvane EventLogger", "There is no configuration."},
        {wrongTimeout, "[]", initialization_failed, "TIMEOUT",
         "\"TIMEOUT\" is missing or no time span."},
        {fillerAlone(), refuseTimeout, initialization_failed, "Filler",
         "E_FAIL: Unspecified error"},
    };
    for (const Case& refused : cases) {
        Simulation simulation;
        simulation.act(refused.fault);
        RecordingHost host(refused.configuration);
        LoadedExtension loaded(host);
        EXPECT_EQ(loaded.init(), refused.result);
        host.look([&] {
            const Value report = host.lastLogged("CORVANE_EVENTLOGGER_ERROR").parameters();
            EXPECT_EQ(report.get_map().get("0").get_string(), refused.subject);
            EXPECT_EQ(report.get_map().get("2").get_string(), refused.reason);
            host.listeners.clear();
        });
        loaded.extension.reset();
        EXPECT_EQ(simulation.liveObjects(), 0);
    }
}

TEST(Lifecycle, RunsWithoutTargetsAndWithoutALogger) {
    {
        RecordingHost host(RecordingHost::configurationFor({}));
        LoadedExtension loaded(host);
        EXPECT_EQ(loaded.init(), ErrorValue::success);
        EXPECT_EQ(loaded.command("Diagnostics").read_value().get_map().get("TARGET_SYSTEMS"),
                  Value(ValueType::map));
        EXPECT_EQ(loaded.command("ListEnabledTargetSystems").read_value(),
                  Value(ValueType::vector));
        const Command unknown = loaded.command("diagnostics");
        EXPECT_EQ(unknown.extension_result(), 293U);
        EXPECT_EQ(unknown.result().text().view(),
                  "Unkown command. Command handler missing. Please check the version of the "
                  "extension.");
    }
    Simulation simulation;
    simulation.act(R"({"do": "fail", "call": "CreateInstance", "hresult": "0x80040154"})");
    RecordingHost host(fillerAlone());
    LoadedExtension loaded(host);
    EXPECT_EQ(loaded.init(), ErrorValue::success);
    host.look([&] {
        const Message entry = host.lastLogged("CAN_NOT_CREATE_PROXY");
        EXPECT_EQ(entry.severity(), Severity::error);
        EXPECT_EQ(entry.parameters().get_map().get("0").get_string(), "Filler");
        EXPECT_EQ(entry.parameters().get_map().get("1").get_string(), "0x80040154");
    });
    EXPECT_EQ(loaded.diagnostics("Filler", "connectionState"), "Not Connected");
    EXPECT_EQ(loaded.command("ForceReconnect", "Filler").extension_result(), 257U);
    Value target(ValueType::structure);
    target.insert("targetName", "Filler");
    EXPECT_EQ(loaded.command("ClearLoggedEvents", target).extension_result(), 257U);
}

TEST(Lifecycle, ConnectsLaterWhatInitDidNot) {
    Simulation simulation;
    RecordingHost host(RecordingHost::configurationFor(
        {{"Filler", fillerNetId, false}, {"Packer", packerNetId}, {"Nobody", "9.9.9.9.1.1"}}));
    LoadedExtension loaded(host);
    EXPECT_EQ(loaded.init(), ErrorValue::success);
    host.look([&] {
        EXPECT_EQ(host.logged("TARGET_SYSTEM_CONNECTED"), 1U) << "Packer alone";
        const Value failure = host.lastLogged("TARGET_SYSTEM_CONNECT_FAILED").parameters();
        EXPECT_EQ(failure.get_map().get("0").get_string(), "Nobody");
        EXPECT_EQ(failure.get_map().get("1").get_string(), "0x98110007");
    });
    EXPECT_TRUE(host.waitFor([&] { return host.logged("LOGGED_EVENTS_IMPORTED") == 2; }));
    EXPECT_EQ(loaded.diagnostics("Filler", "connectionState"), "Good");
    EXPECT_EQ(loaded.diagnostics("Nobody", "connectError"),
              "GLOBAL: target machine not found (0x98110007)");
    EXPECT_EQ(loaded.command("ListEnabledTargetSystems").read_value().size(), 3U);
}

TEST(Lifecycle, ALibraryThatHangsKeepsNoOtherTargetWaiting) {
    Simulation simulation;
    simulation.act(R"([{"do": "fail", "call": "SetTimeout", "hresult": "0x80004005"},
                       {"do": "pause", "call": "SetTimeout"}])");
    RecordingHost host(RecordingHost::configurationFor(
        {{"Filler", fillerNetId}, {"Packer", packerNetId}}));
    host.configuration.insert_or_update("TIMEOUT", Timespan::from_milliseconds(100));
    LoadedExtension loaded(host);
    EXPECT_EQ(loaded.init(), ErrorValue::success) << "after a time-out";
    EXPECT_TRUE(eventually([&] { return simulation.calls("SetTimeout") == 2; })) << "side by side";
    simulation.act(R"({"do": "resume"})");
    EXPECT_TRUE(host.waitFor([&] { return host.logged("LOGGED_EVENTS_IMPORTED") == 2; }))
        << "the one that was refused has been tried again";
}

TEST(Lifecycle, EndsDuringItsBeginningToo) {
    Simulation simulation;
    simulation.act(R"({"do": "pause", "call": "ConnectWithSettings"})");
    RecordingHost host(fillerAlone());
    LoadedExtension loaded(host);
    std::thread starting([&] { EXPECT_EQ(loaded.init(), ErrorValue::initialization_failed); });
    while (simulation.calls("ConnectWithSettings") == 0)
        std::this_thread::yield();
    EXPECT_EQ(loaded.shutdown(), ErrorValue::success);
    simulation.act(R"({"do": "resume"})");
    starting.join();
    host.look([&] { EXPECT_TRUE(host.listeners.empty()); });
    loaded.extension.reset();
    EXPECT_EQ(simulation.liveObjects(), 0);
}

// Calls of the runtime hang until their time-out, which is when the shutdown gives up on them.
TEST(Lifecycle, AfterItsEndTheHostHearsNothing) {
    Simulation simulation;
    RecordingHost host(RecordingHost::configurationFor(
        {{"Filler", fillerNetId}, {"Packer", packerNetId}}));
    LoadedExtension loaded(host);
    EXPECT_EQ(loaded.init(), ErrorValue::success);
    ASSERT_TRUE(host.waitFor([&] { return host.logged("LOGGED_EVENTS_IMPORTED") == 2; }));
    simulation.act(R"({"do": "pause", "call": "IsConnected"})");
    simulation.act(R"({"do": "pause", "call": "Severity"})", packerNetId);
    simulation.raise("hot", 1, packerNetId);
    const auto checks = simulation.calls("IsConnected");
    while (simulation.calls("IsConnected") == checks ||
           simulation.calls("Severity", packerNetId) == 0)
        std::this_thread::yield();
    EXPECT_EQ(loaded.shutdown(), ErrorValue::success);
    Calls atTheEnd;
    host.look([&] { atTheEnd = host.calls; });
    EXPECT_EQ(atTheEnd.back(), "unregister configuration");
    loaded.extension.reset();
    host.look([&] { EXPECT_EQ(host.calls, atTheEnd); });
    for (const char* netId : {fillerNetId, packerNetId})
        EXPECT_EQ(simulation.liveObjects(netId), 0);
}

/// Each waits until the other is inside its slot too.
TEST(Lifecycle, EventsAreProvidedAlsoFromInsideTheSlotsOfTwoTargets) {
    Simulation simulation;
    RecordingHost host(RecordingHost::configurationFor(
        {{"Filler", fillerNetId}, {"Packer", packerNetId}}));
    host.configuration.insert_or_update("TIMEOUT", Timespan::from_milliseconds(100));
    LoadedExtension loaded(host);
    std::atomic<int> inside = 0;
    std::atomic<int> failed = 0;
    host.insideSlot = [&](const std::string& call) {
        if (!call.starts_with("raise "))
            return;
        ++inside;
        EXPECT_TRUE(eventually([&] { return inside == 2; }));
        failed += !loaded.listener<IZrHmiSrvAlarmProviderListener>()
                       ->provide_events(loaded.context, host)
                       .succeeded();
    };
    ASSERT_EQ(loaded.init(), ErrorValue::success);
    for (const char* netId : {fillerNetId, packerNetId})
        ASSERT_TRUE(eventually([&] { return simulation.calls("IsConnected", netId) > 0; }))
            << "the reset after its import is over";
    std::size_t resets = 0;
    host.look([&] { resets = host.count("reset"); });
    simulation.raise("hot");
    simulation.raise("hot", 1, packerNetId);
    EXPECT_TRUE(host.waitFor([&] { return host.count("reset") > resets; })) << "what was left out";
    EXPECT_GT(failed, 0);
}

/// The host asks inside its reset, and never has room for what it is given.
TEST(Lifecycle, AHandOverThatFailsIsOwedFromTickToTick) {
    struct Full final : IEventReceiver {
        void replace_events(const char*, std::span<const Event>) override { throw std::bad_alloc(); }
    } receiver;
    Simulation simulation;
    RecordingHost host(fillerAlone());
    LoadedExtension loaded(host);
    host.insideSlot = [&](const std::string& call) {
        auto* provider = loaded.listener<IZrHmiSrvAlarmProviderListener>();
        if (call != "reset" || !provider)
            return;
        EXPECT_FALSE(provider->provide_events(loaded.context, receiver).succeeded());
    };
    ASSERT_EQ(loaded.init(), ErrorValue::success);
    EXPECT_TRUE(host.waitFor([&] { return host.count("reset") == 3; }));
    const auto checks = simulation.calls("IsConnected");
    EXPECT_TRUE(eventually([&] { return simulation.calls("IsConnected") > checks + 1; }))
        << "meanwhile its keeper goes on";
}

struct Running : testing::Test {
    void SetUp() override {
        ASSERT_EQ(loaded.init(), ErrorValue::success);
        ASSERT_TRUE(host.waitFor([&] { return host.count("reset") == 1; }));
    }
    Alarm raise(const std::string& more = {}) {
        simulation.raise("hot", 1, fillerNetId, more);
        Alarm alarm;
        EXPECT_TRUE(host.waitFor([&] { return host.alarms.contains(1); }));
        host.look([&] { alarm = host.alarms[1]; });
        return alarm;
    }

    Simulation simulation;
    RecordingHost host{fillerAlone()};
    LoadedExtension loaded{host};
};

TEST_F(Running, AnAlarmGoesToTheHostAndItsConfirmationToTheLogger) {
    Alarm alarm = raise();
    EXPECT_EQ(alarm.name().view(), "ZREVENTLOGGER_ALARM");
    EXPECT_EQ(alarm.domain().view(), "TestDomain");
    EXPECT_EQ(alarm.severity(), Severity::error);
    EXPECT_EQ(alarm.confirmation_state(), AlarmConfirmationState::pending);
    EXPECT_TRUE(alarm.is_active());

    EXPECT_EQ(loaded.confirm(alarm), ErrorValue::success);
    ASSERT_TRUE(host.waitFor([&] { return host.calls.back() == "update 1"; }));
    simulation.act(R"({"do": "clear", "alarm": "hot"})");
    ASSERT_TRUE(host.waitFor([&] { return host.calls.back() == "remove 1"; }));
    host.look([&] {
        EXPECT_EQ(host.alarms.at(1).confirmation_state(), AlarmConfirmationState::confirmed);
        EXPECT_FALSE(host.alarms.at(1).is_active());
    });
    EXPECT_EQ(loaded.confirm(alarm), ErrorValue::operation_failed) << "no longer live";
    simulation.act(R"([{"do": "refuse", "hresult": "0x98110745"}, {"do": "drop"}])");
    const ResultPair refused = loaded.confirm(alarm);
    EXPECT_EQ(refused, ErrorValue::not_connected);
    EXPECT_EQ(refused.text().view(), "Not connected.");
    alarm.payload().insert_or_update("targetName", "Filter");
    const ResultPair unknown = loaded.confirm(alarm);
    EXPECT_EQ(unknown, ErrorValue::unknown_target_system);
    EXPECT_EQ(unknown.text().view(), "TARGET_NOT_FOUND");
}

TEST_F(Running, EveryReasonOfADatabaseChangeIsLoggedAndImportsAgain) {
    const char* const reasons[] = {"Undefined", "ClearLoggedEvents", "MaximumSizeReached",
                                   "Deleted"};
    for (std::size_t i = 0; i < std::size(reasons); ++i) {
        simulation.act(R"({"do": "databaseChanged", "reason": )" + std::to_string(i) + "}");
        ASSERT_TRUE(host.waitFor([&] { return host.logged("LOGGED_EVENTS_IMPORTED") == i + 2; }));
        host.look([&] {
            const auto change = host.lastLogged("DATABASE_CHANGED").parameters().get_map();
            EXPECT_EQ(change.get("0").get_string(), "Filler");
            EXPECT_EQ(change.get("1").get_string(), reasons[i]);
        });
    }
}

TEST_F(Running, NotificationsAreHandledAlsoWhileNoImportSucceeds) {
    // It never lets go of the connection either.
    simulation.act(R"([{"do": "fail", "call": "Disconnect", "kind": "answersNothing",
                        "times": 1000000},
                       {"do": "fail", "call": "GetActiveAlarms", "kind": "exception",
                        "times": 1000000}])");
    loaded.command("ForceReconnect", "Filler");
    ASSERT_TRUE(host.waitFor([&] { return host.logged("CORVANE_EVENTLOGGER_ERROR") > 1; }));
    host.look([&] {
        const auto report = host.lastLogged("CORVANE_EVENTLOGGER_ERROR").parameters().get_map();
        EXPECT_EQ(report.get("2").get_string(),
                  "An error occurred in the communication with the Corvane EventLogger.")
            << "as the exception has no text";
    });
    // One that meets an import is discarded with it.
    EXPECT_TRUE(eventually([&] {
        simulation.raise("hot");
        std::size_t raised = 0;
        host.look([&] { raised = host.logged("NEW_ALARM_RAISED"); });
        return raised != 0;
    }));
}

TEST_F(Running, TheTextsOfATargetAreLookedUpAnewAfterItsImport) {
    LocalizableItem item(raise(R"(, "arguments": [95.5], "source": {"name": "Tank"})").payload());
    auto& localization = *loaded.listener<IZrHmiSrvEventLocalizationListener>();
    String text;
    const auto localize = [&] {
        return localization.localize_event(loaded.context, "de-DE", item, text);
    };

    // While the target is being checked, which tells of the cache in the end.
    simulation.act(R"({"do": "pause", "call": "IsConnected"})");
    const auto checks = simulation.calls("IsConnected");
    ASSERT_TRUE(eventually([&] { return simulation.calls("IsConnected") > checks; }));
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(localize(), ErrorValue::success);
        EXPECT_EQ(text.name().view(), "Temperatur 95.5 zu hoch");
    }
    EXPECT_EQ(simulation.calls("GetEventText"), 1);
    simulation.act(R"({"do": "resume"})");
    ASSERT_TRUE(host.waitFor([&] { return host.logged("TRANSLATION_CACHE_USED") != 0; }));
    host.look([&] {
        const auto used = host.lastLogged("TRANSLATION_CACHE_USED").parameters().get_map();
        EXPECT_EQ(used.get("0").get_string(), "Filler");
        EXPECT_EQ(static_cast<int>(used.get("1")), 8) << "hits";
        EXPECT_EQ(static_cast<int>(used.get("2")), 4) << "misses";
    });
    // During the import, and again after it.
    simulation.act(R"({"do": "pause", "call": "GetActiveAlarms"})");
    EXPECT_EQ(loaded.command("ForceReconnect", "Filler").extension_result(), 0u);
    ASSERT_TRUE(eventually([&] { return simulation.calls("GetActiveAlarms") == 2; }));
    EXPECT_EQ(localize(), ErrorValue::success);
    EXPECT_EQ(simulation.calls("GetEventText"), 2);
    simulation.act(R"({"do": "resume"})");
    ASSERT_TRUE(host.waitFor([&] { return host.logged("LOGGED_EVENTS_IMPORTED") == 2; }));
    EXPECT_EQ(localize(), ErrorValue::success);
    EXPECT_EQ(simulation.calls("GetEventText"), 3);

    simulation.act(R"({"do": "fail", "call": "GetEventText", "hresult": "0x80004005"})");
    item.parameters().insert_or_update("eventId", 2);
    EXPECT_EQ(localize(), ErrorValue::request_failed);
    host.look([&] {
        const auto report = host.lastLogged("CORVANE_EVENTLOGGER_ERROR").parameters().get_map();
        EXPECT_EQ(report.get("0").get_string(), "Filler");
        EXPECT_EQ(static_cast<double>(report.get("1")), -1.0);
        EXPECT_EQ(report.get("2").get_string(),
                  "An error occurred in the communication with the Corvane EventLogger.");
    });
    loaded.shutdown();
    EXPECT_EQ(localize(), ErrorValue::not_connected) << "its target has left";
    item.parameters() = 5;
    EXPECT_EQ(localize(), ErrorValue::request_failed) << "and no exception leaves";
}

}  // namespace
