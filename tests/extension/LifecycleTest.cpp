#include <gtest/gtest.h>

#include "support/LoadedExtension.h"
#include "support/RecordingHost.h"
#include "support/Simulation.h"

using namespace bridge_test;
using namespace ZrHmiSrv;

namespace {

using Calls = std::vector<std::string>;

Value fillerAlone() {
    return RecordingHost::configurationFor({{"Filler", fillerNetId}});
}

TEST(Entry, NeedsBothPlacesForItsResults) {
    RecordingHost host;
    IZrHmiSrvExt* extension = nullptr;
    double version = 0;
    EXPECT_EQ(ext_interface(&host, nullptr, &version), 0);
    EXPECT_EQ(ext_interface(&host, &extension, nullptr), 0);
    EXPECT_EQ(extension, nullptr);
    EXPECT_EQ(version, 0);
    EXPECT_EQ(ext_interface(&host, &extension, &version), 0);
    EXPECT_EQ(version, 22.0);
    ASSERT_NE(extension, nullptr);
    EXPECT_TRUE(extension->description().name().empty());
    delete extension;
}

TEST(Lifecycle, CallsTheHostInItsOrder) {
    Simulation simulation;
    RecordingHost host(fillerAlone());
    {
        LoadedExtension loaded(host);
        EXPECT_EQ(loaded.init(), ErrorValue::success);
        host.look([&] {
            EXPECT_EQ(std::exchange(host.calls, {}),
                      (Calls{"announce Corvane EventLogger", "register alarm provider",
                             "register event localization", "register shutdown", "register request",
                             "log TARGET_SYSTEM_CONNECTED", "log LOGGED_EVENTS_IMPORTED",
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
        std::string lastCall;
    };
    Value wrongTimeout = fillerAlone();
    wrongTimeout.insert_or_update("TIMEOUT", "PT5S");
    const char* const refuseTimeout =
        R"({"do": "fail", "call": "SetTimeout", "hresult": "0x80004005"})";
    const Case cases[] = {
        {{}, "[]", ErrorValue::invalid_configuration, "announce Corvane EventLogger"},
        {wrongTimeout, "[]", ErrorValue::initialization_failed, "announce Corvane EventLogger"},
        {fillerAlone(), refuseTimeout, ErrorValue::initialization_failed,
         "log CORVANE_EVENTLOGGER_ERROR"},
    };
    for (const Case& refused : cases) {
        Simulation simulation;
        simulation.act(refused.fault);
        RecordingHost host(refused.configuration);
        LoadedExtension loaded(host);
        EXPECT_EQ(loaded.init(), refused.result);
        host.look([&] {
            EXPECT_EQ(host.calls.back(), refused.lastCall);
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
        const auto answers = loaded.command(
            {{"d", "Diagnostics"}, {"x", "diagnostics"}, {"l", "ListEnabledTargetSystems"}});
        EXPECT_EQ(answers[0].read_value().get_map().get("TARGET_SYSTEMS"), Value(ValueType::map));
        EXPECT_EQ(answers[1].extension_result(), 293U);
        EXPECT_EQ(answers[1].result().text().view(),
                  "Unkown command. Command handler missing. Please check the version of the "
                  "extension.");
        EXPECT_EQ(answers[2].read_value(), Value(ValueType::vector));
    }
    Simulation simulation;
    simulation.act(R"({"do": "fail", "call": "CreateInstance", "hresult": "0x80040154"})");
    RecordingHost host(fillerAlone());
    LoadedExtension loaded(host);
    EXPECT_EQ(loaded.init(), ErrorValue::success);
    const Message entry = host.lastLogged("CAN_NOT_CREATE_PROXY");
    EXPECT_EQ(entry.severity(), Severity::error);
    EXPECT_EQ(entry.parameters().get_map().get("0").get_string(), "Filler");
    EXPECT_EQ(entry.parameters().get_map().get("1").get_string(), "0x80040154");
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
    EXPECT_TRUE(host.waitFor([&] { return host.calls.back() == "reset"; }));
    EXPECT_EQ(loaded.diagnostics("Filler", "connectionState"), "Good");
    EXPECT_EQ(loaded.diagnostics("Nobody", "connectError"),
              "GLOBAL: target machine not found (0x98110007)");
    EXPECT_EQ(loaded.command("ListEnabledTargetSystems").read_value().size(), 3U);
}

TEST(Running, AlarmGoesToTheHostAndItsConfirmationToTheLogger) {
    Simulation simulation;
    RecordingHost host(fillerAlone());
    LoadedExtension loaded(host);
    ASSERT_EQ(loaded.init(), ErrorValue::success);
    host.look([&] { host.calls.clear(); });

    simulation.raise("hot");
    ASSERT_TRUE(host.waitFor([&] { return !host.alarms.empty(); }));
    Alarm alarm;
    host.look([&] { alarm = host.alarms.at(1); });
    EXPECT_EQ(alarm.name().view(), "ZREVENTLOGGER_ALARM");
    EXPECT_EQ(alarm.domain().view(), "TestDomain");
    EXPECT_EQ(alarm.severity(), Severity::error);
    EXPECT_EQ(alarm.confirmation_state(), AlarmConfirmationState::pending);
    EXPECT_TRUE(alarm.is_active());
    EXPECT_EQ(alarm.payload().get_map().get("eventClass").get_string(), eventClass);

    EXPECT_EQ(loaded.confirm(alarm), ErrorValue::success);
    ASSERT_TRUE(host.waitFor([&] { return host.calls.back() == "update 1"; }));
    simulation.act(R"({"do": "clear", "alarm": "hot"})");
    ASSERT_TRUE(host.waitFor([&] { return host.calls.back() == "remove 1"; }));
    host.look([&] {
        EXPECT_EQ(host.calls, (Calls{"log NEW_ALARM_RAISED", "raise 1", "log CALL_CONFIRM",
                                     "log KNOWN_ALARM_CONFIRMED", "update 1",
                                     "log KNOWN_ALARM_CLEARED", "remove 1"}));
        EXPECT_EQ(host.alarms.at(1).confirmation_state(), AlarmConfirmationState::confirmed);
        EXPECT_FALSE(host.alarms.at(1).is_active());
        EXPECT_TRUE(host.alarms.at(1).time_confirmed().isset());
    });
    EXPECT_EQ(loaded.confirm(alarm), ErrorValue::operation_failed) << "no longer live";
    alarm.payload().insert_or_update("targetName", "Filter");
    const ResultPair unknown = loaded.confirm(alarm);
    EXPECT_EQ(unknown, ErrorValue::unknown_target_system);
    EXPECT_EQ(unknown.text().view(), "TARGET_NOT_FOUND");

    simulation.act(std::string(R"({"do": "message", "event": 3, "class": ")") + eventClass + "\"}");
    ASSERT_TRUE(host.waitFor([&] { return host.messages.size() == 1; }));
    host.look([&] { EXPECT_EQ(host.messages[0].name().view(), "ZREVENTLOGGER_MESSAGE"); });

    simulation.act(R"({"do": "refuse", "hresult": "0x98110745"})");
    simulation.act(R"({"do": "drop"})");
    const ResultPair refused = loaded.confirm(host.alarms.at(1));
    EXPECT_EQ(refused, ErrorValue::not_connected);
    EXPECT_EQ(refused.text().view(), "Not connected.");
}

}  // namespace
