#include <gtest/gtest.h>

#include "support/LoadedExtension.h"
#include "support/RecordingHost.h"
#include "support/Simulation.h"

using namespace bridge_test;
using namespace ZrHmiSrv;

namespace {

using Calls = std::vector<std::string>;

Value oneTarget(bool enabled = true) {
    Value configuration = RecordingHost::configurationWithLimit(100);
    RecordingHost::addTarget(configuration, "Filler", fillerNetId, enabled);
    return configuration;
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
    RecordingHost host(oneTarget());
    {
        LoadedExtension extension(host);
        EXPECT_EQ(extension.init(), ErrorValue::success);
        host.look([&] {
            EXPECT_EQ(host.calls,
                      (Calls{"announce Corvane EventLogger", "register alarm provider",
                             "register event localization", "register shutdown",
                             "register request", "log TARGET_SYSTEM_CONNECTED",
                             "log LOGGED_EVENTS_IMPORTED", "register with settings configuration"}));
            const Value settings = host.listenerSettings[std::size_t{0}];
            EXPECT_EQ(static_cast<int>(*settings.lookup("flags")), 48);
            EXPECT_EQ(settings.lookup("paths")->get_vector().get(0).get_string(),
                      "TARGET_SYSTEMS::*");
            EXPECT_EQ(host.log.front().domain().view(), "TestDomain");
            EXPECT_EQ(host.log.front().severity(), Severity::unspecified);
            host.calls.clear();
        });
        EXPECT_EQ(extension.shutdown(), ErrorValue::success);
        host.look([&] {
            EXPECT_EQ(host.calls,
                      (Calls{"unregister alarm provider", "unregister event localization",
                             "unregister shutdown", "unregister request",
                             "unregister configuration"}));
        });
        EXPECT_EQ(simulation.liveObjects(), 0);
    }
    simulation.raise("late");
    host.look([&] { EXPECT_EQ(host.calls.size(), 5U) << "a call after the shutdown"; });
}

struct RefusedInit {
    const char* what;
    Value configuration;
    const char* fault;  ///< for the simulated runtime
    ErrorValue result;
    Calls calls;
};

TEST(Lifecycle, RefusesWithACode) {
    Value wrongTimeout = oneTarget();
    wrongTimeout.insert_or_update("TIMEOUT", "PT5S");
    const Calls announced{"announce Corvane EventLogger"};
    Calls registered = announced;
    for (const char* listener : {"alarm provider", "event localization", "shutdown", "request"})
        registered.push_back(std::string("register ") + listener);
    registered.push_back("log CORVANE_EVENTLOGGER_ERROR");
    const RefusedInit cases[] = {
        {"no configuration", {}, "[]", ErrorValue::invalid_configuration, announced},
        {"time-out no time span", wrongTimeout, "[]", ErrorValue::initialization_failed, announced},
        {"time-out refused", oneTarget(),
         R"({"do": "fail", "call": "SetTimeout", "hresult": "0x80004005"})",
         ErrorValue::initialization_failed, registered},
    };
    for (const RefusedInit& refused : cases) {
        SCOPED_TRACE(refused.what);
        Simulation simulation;
        simulation.act(refused.fault);
        RecordingHost host(refused.configuration);
        LoadedExtension extension(host);
        EXPECT_EQ(extension.init(), refused.result);
        host.look([&] {
            EXPECT_EQ(host.calls, refused.calls);
            host.listeners.clear();
        });
        extension.destroy();
        EXPECT_EQ(simulation.liveObjects(), 0);
    }
}

TEST(Lifecycle, RunsWithoutTargetsAndWithoutALogger) {
    {
        RecordingHost host(RecordingHost::configurationWithLimit(10));
        LoadedExtension extension(host);
        EXPECT_EQ(extension.init(), ErrorValue::success);
        const auto answers = extension.command(
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
    RecordingHost host(oneTarget());
    LoadedExtension extension(host);
    EXPECT_EQ(extension.init(), ErrorValue::success);
    host.look([&] {
        const Message entry = host.lastLogged("CAN_NOT_CREATE_PROXY");
        EXPECT_EQ(entry.severity(), Severity::error);
        EXPECT_EQ(entry.parameters().get_map().get("0").get_string(), "Filler");
        EXPECT_EQ(entry.parameters().get_map().get("1").get_string(), "0x80040154");
    });
    EXPECT_EQ(extension.diagnostics("Filler").get_map().get("connectionState").get_string(),
              "Not Connected");
    EXPECT_EQ(extension.command("ForceReconnect", "Filler").extension_result(), 257U);
    Value target(ValueType::structure);
    target.insert("targetName", "Filler");
    EXPECT_EQ(extension.command("ClearLoggedEvents", target).extension_result(), 257U);
}

TEST(Lifecycle, ConnectsLaterWhatInitDidNot) {
    Simulation simulation;
    Value configuration = oneTarget(false);
    RecordingHost::addTarget(configuration, "Packer", packerNetId);
    RecordingHost::addTarget(configuration, "Nobody", "9.9.9.9.1.1");
    RecordingHost host(configuration);
    LoadedExtension extension(host);
    EXPECT_EQ(extension.init(), ErrorValue::success);
    host.look([&] {
        EXPECT_EQ(host.logged("TARGET_SYSTEM_CONNECTED"), 1U) << "Packer alone";
        const Value failure = host.lastLogged("TARGET_SYSTEM_CONNECT_FAILED").parameters();
        EXPECT_EQ(failure.get_map().get("0").get_string(), "Nobody");
        EXPECT_EQ(failure.get_map().get("1").get_string(), "0x98110007");
    });
    EXPECT_TRUE(host.waitFor([&] { return host.resets == 1; }));
    EXPECT_EQ(extension.diagnostics("Filler").get_map().get("connectionState").get_string(),
              "Good");
    EXPECT_EQ(extension.diagnostics("Nobody").get_map().get("connectError").get_string(),
              "GLOBAL: target machine not found (0x98110007)");
    EXPECT_EQ(extension.command("ListEnabledTargetSystems").read_value().size(), 3U);
}

TEST(Running, AlarmGoesToTheHostAndItsConfirmationToTheLogger) {
    Simulation simulation;
    RecordingHost host(oneTarget());
    LoadedExtension extension(host);
    ASSERT_EQ(extension.init(), ErrorValue::success);
    host.look([&] { host.calls.clear(); });

    simulation.raise("hot");
    Alarm alarm;
    ASSERT_TRUE(host.waitFor([&] { return !host.alarms.empty(); }));
    host.look([&] { alarm = host.alarms.begin()->second; });
    EXPECT_EQ(alarm.id(), 1);
    EXPECT_EQ(alarm.name().view(), "ZREVENTLOGGER_ALARM");
    EXPECT_EQ(alarm.domain().view(), "TestDomain");
    EXPECT_EQ(alarm.severity(), Severity::error);
    EXPECT_EQ(alarm.confirmation_state(), AlarmConfirmationState::pending);
    EXPECT_TRUE(alarm.is_active());
    EXPECT_EQ(alarm.payload().get_map().get("eventClass").get_string(), eventClass);

    EXPECT_EQ(extension.confirm(alarm), ErrorValue::success);
    ASSERT_TRUE(host.waitFor([&] {
        return host.alarms.at(1).confirmation_state() == AlarmConfirmationState::confirmed;
    }));
    simulation.clear("hot");
    ASSERT_TRUE(host.waitFor([&] { return host.calls.back() == "remove 1"; }));
    host.look([&] {
        EXPECT_EQ(host.calls, (Calls{"log NEW_ALARM_RAISED", "raise 1", "log CALL_CONFIRM",
                                     "log KNOWN_ALARM_CONFIRMED", "update 1",
                                     "log KNOWN_ALARM_CLEARED", "remove 1"}));
        EXPECT_FALSE(host.alarms.at(1).is_active());
        EXPECT_TRUE(host.alarms.at(1).time_confirmed().isset());
    });
    EXPECT_EQ(extension.confirm(alarm), ErrorValue::operation_failed) << "no longer live";
    alarm.payload().insert_or_update("targetName", "Filter");
    const ResultPair unknown = extension.confirm(alarm);
    EXPECT_EQ(unknown, ErrorValue::unknown_target_system);
    EXPECT_EQ(unknown.text().view(), "TARGET_NOT_FOUND");

    simulation.act(std::string(R"({"do": "message", "event": 3, "class": ")") + eventClass + "\"}");
    ASSERT_TRUE(host.waitFor([&] { return host.messages.size() == 1; }));
    host.look([&] { EXPECT_EQ(host.messages[0].name().view(), "ZREVENTLOGGER_MESSAGE"); });

    simulation.act(R"({"do": "refuse", "hresult": "0x98110745"})");
    simulation.act(R"({"do": "drop"})");
    const ResultPair refused = extension.confirm(host.alarms.at(1));
    EXPECT_EQ(refused, ErrorValue::not_connected);
    EXPECT_EQ(refused.text().view(), "Not connected.");
}

}  // namespace
