#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "robustness/FaultPlan.h"
#include "robustness/Harness.h"
#include "robustness/Watchdog.h"

using namespace bridge_test;
using testing::IsEmpty;
using testing::Not;
using ZrHmiSrv::Alarm;

namespace {

/// What goes wrong, at each call of the scenario in turn.
struct FaultCase {
    std::string name;
    FaultKind kind;
    /// Whether the extension may report errors.
    bool errors = true;
    /// How many calls can be hit at least, for the case to be worth its name.
    unsigned calls = 300;
    /// For a disturbance: what happens in the runtime, at once.
    std::string actions = {};
    /// Whether the library's thread tells of it later, otherwise as soon as it may.
    bool late = false;
};

void PrintTo(const FaultCase& fault, std::ostream* out) {
    *out << fault.name;
}

struct Report {
    Findings findings;
    std::string hit;  ///< empty: the scenario has fewer calls
};

void add(Findings& to, const Findings& more) {
    to.insert(to.end(), more.begin(), more.end());
}

void disturb(Harness& harness, const FaultCase& fault) {
    const char* const hold = fault.late ? R"({"do": "hold"},)" : "";
    harness.simulation.act("[" + std::string(hold) + fault.actions + "]");
    if (!fault.late)
        harness.letArrive();
}

bool isConfirmed(Harness& harness, const char* alarm) {
    const auto status = harness.simulation.status();
    const auto* found = status.at("alarms").as_object().if_contains(alarm);
    return found && found->at("confirmed").as_bool();
}

/// An operator confirms the alarm, if the host shows it. The answer must be what happened.
void confirm(Harness& harness, const char* name, Findings& findings) {
    const Alarm shown = harness.shown(name);
    if (!shown.isset())
        return;
    const auto answer = harness.target->confirm(shown);
    if (answer.succeeded() != isConfirmed(harness, name))
        findings.push_back("confirmation answered " + std::string(answer.text().view()));
}

/// A client looks at the alarm. What it reads must be right if it reads anything.
void lookAt(Harness& harness, const char* name, Findings& findings) {
    const std::string texts = harness.localize(harness.shown(name));
    if (!texts.empty() && texts != Harness::expectedTexts)
        findings.push_back("texts: " + texts);
}

/// Everything a target system does in its life. Each step may find the connection gone.
/// `emptyTexts`: a text that is read as empty stays so until it is read again.
void live(Harness& harness, bool emptyTexts, Findings& findings) {
    const auto step = [&](auto act) {
        act();
        harness.fence();
        harness.tick();
    };
    const auto happens = [&](const std::string& actions) {
        step([&] { harness.simulation.act(actions); });
    };
    // In one cycle of the controller: they bear the same time.
    const char* const time = R"(, "timeRaised": "2024-05-01T14:00:00Z")";
    harness.simulation.act("[" + raiseAction("standing", 2, time) + "," +
                           raiseAction("waiting", 1, time) + "]");
    harness.create();
    step([&] { harness.connect(); });
    happens(raiseAction("hot", 1));
    step([&] { confirm(harness, "hot", findings); });
    if (!emptyTexts)
        step([&] { lookAt(harness, "waiting", findings); });
    happens(alarmAction("clear", "hot"));
    happens(messageAction("news"));
    add(findings, harness.settle(emptyTexts));
    step([&] {
        harness.target->RequestReconnect();
        harness.simulation.act(messageAction("missed"));
    });
    add(findings, harness.settle(emptyTexts));
    harness.retire();
}

Report run(const FaultCase& fault, unsigned position,
           std::chrono::milliseconds patience = std::chrono::seconds(5)) {
    Report report;
    Harness harness;
    FaultPlan::instance().arm({fault.kind, position, [&] { disturb(harness, fault); }});
    live(harness, fault.kind == FaultKind::noText, report.findings);
    report.hit = FaultPlan::instance().hitCall();
    // The library's thread may be the last to let go.
    add(report.findings, harness.findLeaks(patience));
    FaultPlan::instance().arm({});
    if (!fault.errors || report.hit.empty())
        add(report.findings, harness.complaints());
    return report;
}

class EveryCall : public testing::TestWithParam<FaultCase> {
    const Watchdog watchdog{std::chrono::seconds(100)};
};

TEST_P(EveryCall, MayGoWrongOnce) {
    unsigned position = 0;
    int failures = 0;
    for (std::string hit = "?"; !hit.empty() && failures < 3;) {
        const Report report = run(GetParam(), ++position);
        hit = report.hit;
        EXPECT_THAT(report.findings, IsEmpty()) << "call " << position << ", " << hit;
        failures += !report.findings.empty();
    }
    EXPECT_GT(position, GetParam().calls);
    RecordProperty("calls", static_cast<int>(position - 1));
}

std::vector<FaultCase> faultCases() {
    std::vector<FaultCase> cases{
        {"FailingResult", FaultKind::failure},
        {"NoObject", FaultKind::noObject, true, 50},
        {"EmptyText", FaultKind::noText, false, 15},
        {"Exception", FaultKind::exception},
        {"ForeignException", FaultKind::foreignException},
    };
    const auto addDisturbance = [&](const std::string& name, const std::string& actions,
                                    bool errors) {
        constexpr unsigned calls = 300;
        cases.push_back({name, FaultKind::disturbance, errors, calls, actions});
        cases.push_back({"Late" + name, FaultKind::disturbance, errors, calls, actions, true});
    };
    const std::string raise = raiseAction("intruder", 1);
    const std::string clear = alarmAction("clear", "standing");
    const std::string confirm = alarmAction("confirm", "waiting");
    const std::string drop = R"({"do": "drop"})";
    addDisturbance("MessageSent", messageAction("intruder"), false);
    addDisturbance("EqualMessagesSent",
                   messageAction("twin", R"(, "count": 2, "timeRaised": "2024-05-01T15:00:00Z")"),
                   false);
    addDisturbance("AlarmRaised", raise, false);
    addDisturbance("AlarmRaisedAgain", raiseAction("waiting", 1), false);
    addDisturbance("AlarmCleared", clear, false);
    addDisturbance("AlarmConfirmed", confirm, false);
    addDisturbance("AlarmEnded", confirm + "," + alarmAction("clear", "waiting"), false);
    addDisturbance("AlarmReplaced", clear + "," + raiseAction("standing", 2), false);
    addDisturbance("AlarmCameAndWent",
                   raiseAction("intruder", 2) + "," + alarmAction("clear", "intruder"), false);
    addDisturbance("DatabaseChanged", R"({"do": "databaseChanged", "reason": 2})", true);
    addDisturbance("DatabaseChangedAndMore",
                   R"({"do": "databaseChanged", "reason": 3},)" + raise + "," + clear, true);
    cases.push_back({"Dropped", FaultKind::disturbance, true, 300, drop});
    cases.push_back({"DroppedAndMissed", FaultKind::disturbance, true, 300,
                     drop + "," + raise + "," + clear + "," + messageAction("intruder")});
    return cases;
}

std::string nameOf(const testing::TestParamInfo<FaultCase>& fault) {
    return fault.param.name;
}

INSTANTIATE_TEST_SUITE_P(Faults, EveryCall, testing::ValuesIn(faultCases()), nameOf);

/// A library that loses a notification or a reference must be found out, each time.
TEST(Checks, SeeADefectOfTheLibrary) {
    const Watchdog watchdog(std::chrono::seconds(100));
    for (const FaultKind kind : {FaultKind::swallowedNotification, FaultKind::forgottenRelease}) {
        unsigned position = 1;
        for (;; ++position) {
            const Report report = run({"", kind}, position, std::chrono::milliseconds(0));
            if (report.hit.empty())
                break;
            EXPECT_THAT(report.findings, Not(IsEmpty())) << report.hit << " " << position;
        }
        EXPECT_GT(position, 4U);
    }
}

}  // namespace
