/// FAULT_STRIDE lets only every n-th call go wrong, where each would take too long.
#include <algorithm>
#include <cstdlib>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "robustness/Eventually.h"
#include "robustness/Fleet.h"

using namespace bridge_test;
using testing::IsEmpty;
using testing::Not;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::Value;

namespace {

/// What goes wrong, at each call of the scenario in turn.
struct FaultCase {
    std::string name;
    std::string calls;  ///< those that can be hit
    std::string what;
    /// How many of them there are at least, for the case to be worth its name.
    std::size_t atLeast;
    /// Whether the extension may report errors.
    bool errors = true;
    /// A text that is read as empty stays so until it is read again.
    bool emptyTexts = false;
};

void PrintTo(const FaultCase& fault, std::ostream* out) {
    *out << fault.name;
}

const char* const expectedTexts =
    "Temperatur 7 zu hoch, Maschine, Pump off, Start it, Detail, More";

/// The texts of an alarm of event 1 in the language of a client; empty when the look-up fails.
std::string localize(Fleet& fleet, const hmi::EventRecordPtr& alarm) {
    const auto texts = fleet.server.calls.localize(*alarm, "de-DE");
    if (!texts || texts->result != ErrorValue::success)
        return {};
    const auto fields = texts->parameters.get_map();
    const auto cause = fields.get("causeRemedy").get_vector().get(0).get_map();
    const auto detail = fields.get("details").get_map().get("k").get_map();
    std::string all(texts->text.view());
    for (const Value& part : {fields.get("eventClassName"), cause.get("cause"), cause.get("remedy"),
                              detail.get("text"), detail.get("comment")})
        all += ", " + part.get_string();
    return all;
}

/// An operator confirms the alarm, where it is shown. The answer must be what happened.
void confirm(Fleet& fleet, const char* name) {
    fleet.forEach([&](Machine& machine) {
        const auto alarm = fleet.shown(machine, name);
        if (!alarm)
            return;
        const auto answer = fleet.server.calls.confirm(*alarm->alarm());
        if (answer->succeeded() != fleet.isConfirmed(machine, name))
            machine.findings.push_back("confirmation answered " +
                                       std::string(answer->text().view()));
    });
}

enum class Expected { anyTexts, theTextsOrNone, theTexts };

/// A client looks at the alarm. What is to come may strike this very look.
void lookAt(Fleet& fleet, const char* name, Expected expected) {
    fleet.forEach([&](Machine& machine) {
        const auto alarm = fleet.shown(machine, name);
        std::string texts = alarm ? localize(fleet, alarm) : std::string();
        const bool required = expected == Expected::theTexts && !machine.struck.empty();
        // A connection that a look has broken is found lost with the next tick.
        if (required && alarm && texts.empty())
            eventually([&] {
                texts = localize(fleet, alarm);
                return !texts.empty();
            });
        if (texts != expectedTexts &&
            (required || (expected != Expected::anyTexts && !texts.empty())))
            machine.findings.push_back("texts: " + texts);
    });
}

/// Everything a target system does in its life, in as many machines as there are calls to go
/// wrong. Each step may find the connection gone.
void live(Fleet& fleet, bool emptyTexts) {
    const auto happens = [&](const std::string& actions) {
        fleet.act(actions);
        fleet.settle(emptyTexts);
    };
    const auto meanwhile = emptyTexts ? Expected::anyTexts : Expected::theTextsOrNone;
    happens(raiseAction("hot", 1));
    confirm(fleet, "hot");
    fleet.settle(emptyTexts);
    lookAt(fleet, "waiting", meanwhile);
    fleet.settle(emptyTexts);
    happens(alarmAction("clear", "hot"));
    happens(messageAction("news"));
    fleet.forEach(
        [&](Machine& machine) { fleet.server.command("ForceReconnect", machine.name.c_str()); });
    happens(messageAction("missed"));
    lookAt(fleet, "waiting", meanwhile);
    fleet.settle(emptyTexts);
    lookAt(fleet, "waiting", Expected::theTexts);
}

std::size_t stride() {
    const char* const given = std::getenv("FAULT_STRIDE");
    return given ? std::max(std::strtoul(given, nullptr, 10), 1UL) : 1;
}

/// The machines of one run; each is hit one step later than the one before it.
std::vector<Machine> run(const FaultCase& fault, std::size_t firstCall, std::size_t size,
                         std::size_t step,
                         std::chrono::milliseconds patience = std::chrono::seconds(10)) {
    Fleet fleet(size);
    // In one cycle of the controller: they bear the same time.
    const char* const time = R"(, "timeRaised": "2024-05-01T14:00:00Z")";
    fleet.act("[" + raiseAction("standing", 2, time) + "," + raiseAction("waiting", 1, time) + "]");
    fleet.accept([&](std::size_t index) {
        return index == 0 ? std::string()
                          : R"({"do": "fail", "call": )" + fault.calls + ", " + fault.what +
                                R"(, "skip": )" + std::to_string(firstCall + (index - 1) * step) +
                                "},";
    });
    fleet.settle(fault.emptyTexts);
    fleet.patience = patience;
    live(fleet, fault.emptyTexts);
    fleet.stopAndFindLeaks();
    if (!fault.errors)
        fleet.findComplaints();
    return fleet.machines;
}

class EveryCall : public testing::TestWithParam<FaultCase> {};

TEST_P(EveryCall, MayGoWrongOnce) {
    std::size_t calls = 0;
    const std::size_t atATime = 400 / stride();
    for (bool allStruck = true; allStruck && !HasFailure();) {
        const auto machines = run(GetParam(), calls * stride(), atATime, stride());
        EXPECT_THAT(machines.front().findings, IsEmpty()) << "where nothing goes wrong";
        for (std::size_t i = 1; i < machines.size(); ++i) {
            EXPECT_THAT(machines[i].findings, IsEmpty())
                << "call " << (calls + i) * stride() << ", " << machines[i].struck;
            allStruck = allStruck && !machines[i].struck.empty();
        }
        calls += static_cast<std::size_t>(
            std::count_if(machines.begin(), machines.end(),
                          [](const Machine& machine) { return !machine.struck.empty(); }));
    }
    EXPECT_GE(calls * stride(), GetParam().atLeast);
    RecordProperty("calls", static_cast<int>(calls));
}

/// Where a failure can be told from an answer. Those that the library answers before it knows for
/// which runtime, and IsConnected, whose calls the time counts, have cases of their own.
const char* const anyCall =
    R"(["ConnectWithSettings", "Connect", "Disconnect", "GetLoggedEvents", "GetActiveAlarms",
        "GetItem", "GetCount", "GetEventText", "GetEventClassName", "GetSourceName",
        "GetCauseRemedy", "GetDetails", "GetText", "Confirm", "EventClass", "EventId", "Severity",
        "HasSource", "SourceId", "SourceGuid", "SourceName", "TimeRaised", "TimeCleared",
        "TimeConfirmed", "ConfirmationState", "Arguments", "JsonAttribute", "QueryInterface",
        "FindConnectionPoint", "Unadvise", "EventType", "IsActive", "RequiresConfirmation",
        "InstanceId"])";

std::vector<FaultCase> failures() {
    const std::string result = R"("hresult": "0x98110745")";
    const std::string nothing = R"("kind": "answersNothing")";
    const std::string exception = R"("kind": "exception")";
    const std::string foreign = R"("kind": "foreignException")";
    const std::string objects = R"(["GetLoggedEvents", "GetActiveAlarms", "GetItem",
        "GetCauseRemedy", "GetDetails", "QueryInterface", "FindConnectionPoint", "Notification"])";
    const std::string texts = R"(["GetEventText", "GetEventClassName", "GetSourceName", "GetText",
        "SourceName", "JsonAttribute"])";
    return {{"FailingResult", anyCall, result, 250},
            {"Exception", anyCall, exception, 250},
            {"ForeignException", anyCall, foreign, 250},
            {"NoObject", objects, nothing, 60},
            {"EmptyText", texts, nothing, 20, false, true},
            {"NoAnswerWhetherConnected", R"("IsConnected")", result, 8},
            {"NotConnected", R"("IsConnected")", nothing, 8},
            {"ExceptionInsteadOfConnected", R"("IsConnected")", foreign, 8}};
}

/// What happens in a runtime at that very moment; the library's thread tells of it as soon as it
/// may, or late.
void addDisturbance(std::vector<FaultCase>& cases, const std::string& name,
                    const std::string& actions, bool errors, bool alsoLate = true) {
    std::string calls = anyCall;
    calls.insert(calls.size() - 1, R"(, "Notification")");
    const auto add = [&](const std::string& prefix, const std::string& first) {
        cases.push_back(
            {prefix + name, calls, R"("meanwhile": [)" + first + actions + "]", 250, errors});
    };
    add("", "");
    if (alsoLate)
        add("Late", R"({"do": "hold"}, )");
}

std::vector<FaultCase> faultCases() {
    std::vector<FaultCase> cases = failures();
    const std::string raise = raiseAction("intruder", 1);
    const std::string clear = alarmAction("clear", "standing");
    const std::string confirm = alarmAction("confirm", "waiting");
    const std::string drop = R"({"do": "drop"})";
    addDisturbance(cases, "MessageSent", messageAction("intruder"), false);
    addDisturbance(cases, "EqualMessagesSent",
                   messageAction("twin", R"(, "count": 2, "timeRaised": "2024-05-01T15:00:00Z")"),
                   false);
    addDisturbance(cases, "AlarmRaised", raise, false);
    addDisturbance(cases, "AlarmRaisedAgain", raiseAction("waiting", 1), false);
    addDisturbance(cases, "AlarmCleared", clear, false);
    addDisturbance(cases, "AlarmConfirmed", confirm, false);
    addDisturbance(cases, "AlarmEnded", confirm + "," + alarmAction("clear", "waiting"), false);
    addDisturbance(cases, "AlarmReplaced", clear + "," + raiseAction("standing", 2), false);
    addDisturbance(cases, "AlarmCameAndWent",
                   raiseAction("intruder", 2) + "," + alarmAction("clear", "intruder"), false);
    addDisturbance(cases, "DatabaseChanged", R"({"do": "databaseChanged", "reason": 2})", true);
    addDisturbance(cases, "DatabaseChangedAndMore",
                   R"({"do": "databaseChanged", "reason": 3},)" + raise + "," + clear, true);
    addDisturbance(cases, "Dropped", drop, true, false);
    addDisturbance(cases, "DroppedAndMissed",
                   drop + "," + raise + "," + clear + "," + messageAction("intruder"), true, false);
    return cases;
}

std::string nameOf(const testing::TestParamInfo<FaultCase>& fault) {
    return fault.param.name;
}

INSTANTIATE_TEST_SUITE_P(Faults, EveryCall, testing::ValuesIn(faultCases()), nameOf);

/// What is asked of the library before it knows for which runtime. An administrator does what
/// helps: configures the target again, or anew when it has come without a logger.
class Construction : public testing::TestWithParam<std::pair<const char*, const char*>> {
protected:
    void configure() {
        const auto set = [&] { return server.configure("Filler", fillerNetId, true); };
        if (set() != ErrorValue::success) {
            EXPECT_EQ(set(), ErrorValue::success);
        }
        if (const auto without = server.logged("Filler", "CAN_NOT_CREATE_PROXY");
            without != withoutLogger) {
            withoutLogger = without;
            server.remove("Filler");
            EXPECT_EQ(set(), ErrorValue::success);
        }
    }
    /// The call that was struck for the n-th time.
    std::string struck(std::size_t n) {
        const auto failed = simulation.status().at("failed").as_object();
        for (const auto& entry : failed)
            if (calls[entry.key()] != entry.value().to_number<std::size_t>()) {
                calls[entry.key()] = entry.value().to_number<std::size_t>();
                return entry.key();
            }
        return "none, the " + std::to_string(n) + ".";
    }

    Simulation simulation;
    RunningServer server{{}};
    std::size_t withoutLogger = 0;
    std::map<std::string, std::size_t> calls;
};

TEST_P(Construction, MayGoWrongAtEveryCall) {
    std::size_t position = 0;
    for (std::string call; call != "GetLoggedEvents" && !HasFailure(); ++position) {
        simulation.act(std::string(R"({"do": "fail", "call": )") + GetParam().second +
                       R"(, "skip": )" + std::to_string(position) + "}");
        configure();
        EXPECT_TRUE(eventually([&] { return simulation.status().at("connected").as_bool(); }));
        EXPECT_THAT(server.differences("Filler", fillerNetId), IsEmpty()) << position;
        simulation.raise("hot");
        EXPECT_THAT(server.differences("Filler", fillerNetId), IsEmpty()) << position << ": deaf";
        simulation.act(alarmAction("confirm", "hot"));
        simulation.act(alarmAction("clear", "hot"));
        call = struck(position);
        server.remove("Filler");
        EXPECT_TRUE(eventually([&] {
            const auto status = simulation.status();
            return status.at("liveObjects") == 0 && status.at("advised") == 0;
        })) << call;
    }
    EXPECT_GE(position, 7U);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, Construction,
    testing::Values(std::pair("FailingResult", R"("*", "hresult": "0x98110745")"),
                    std::pair("Exception", R"("*", "kind": "exception")"),
                    std::pair("ForeignException", R"("*", "kind": "foreignException")"),
                    // Without Advise: whoever is told that it is advised has to believe it.
                    std::pair("NoObject", R"(["CreateInstance", "SetTimeout", "QueryInterface",
            "FindConnectionPoint", "SetPreload", "ConnectWithSettings", "GetLoggedEvents"],
            "kind": "answersNothing")")),
    [](const auto& fault) { return fault.param.first; });

/// A library that loses a notification must be found out, each time.
TEST(Checks, SeeADefectOfTheLibrary) {
    constexpr std::size_t told = 4;  // of the alarm and the message, while the connection stands
    const auto machines = run({"", R"("Notification")", R"("hresult": "0x98110745")", 0}, 0,
                              told + 1, 1, std::chrono::milliseconds(1500));
    for (std::size_t i = 1; i <= told; ++i)
        EXPECT_THAT(machines[i].findings, Not(IsEmpty())) << i << machines[i].struck;
}

}  // namespace
