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
    const char* name;
    FaultKind kind;
    /// For a disturbance: what happens in the runtime.
    void (*disturb)(Harness& harness);
    /// How many calls must have been hit at least, for the run to be worth its name.
    unsigned calls;
    /// Whether the extension may report errors.
    bool errors;
};

struct Report {
    Findings findings;
    std::string hit;  ///< empty: the scenario has fewer calls
};

void add(Findings& to, const Findings& more) {
    to.insert(to.end(), more.begin(), more.end());
}

bool isConfirmed(Harness& harness, const char* alarm) {
    const auto status = harness.simulation.status();
    const auto* found = status.at("alarms").as_object().if_contains(alarm);
    return found && found->at("confirmed").as_bool();
}

/// An operator confirms the alarm, if the host shows it. The answer must be what happened.
void confirm(Harness& harness, const char* name, Findings& findings) {
    Alarm shown;
    harness.host.look([&] {
        for (const auto& [id, alarm] : harness.host.alarms)
            if (sourceOf(alarm) == name)
                shown = alarm;
    });
    if (!shown.isset())
        return;
    const auto answer = harness.target->confirm(shown);
    if (answer.succeeded() != isConfirmed(harness, name))
        findings.push_back("confirmation answered " + std::string(answer.text().view()));
}

/// Everything a target system does in its life. Each step may find the connection gone.
void live(Harness& harness, Findings& findings) {
    const auto step = [&](auto act) {
        act();
        harness.fence();
        harness.tick();
    };
    harness.raise("standing", 2);
    harness.raise("waiting", 1);
    harness.create();
    step([&] { harness.connect(); });
    step([&] { harness.raise("hot", 1); });
    step([&] { confirm(harness, "hot", findings); });
    step([&] { harness.act("clear", "hot"); });
    step([&] { harness.send("news"); });
    add(findings, harness.settle());
    step([&] { harness.target->RequestReconnect(); });
    add(findings, harness.settle());
    harness.retire();
}

Report run(const FaultCase& fault, unsigned position,
           std::chrono::milliseconds patience = std::chrono::seconds(5)) {
    Report report;
    Harness harness;
    FaultPlan::instance().arm({fault.kind, position, [&] { fault.disturb(harness); }});
    live(harness, report.findings);
    report.hit = FaultPlan::instance().hitCall();
    // The library's thread may be the last to let go.
    add(report.findings, harness.findLeaks(patience));
    FaultPlan::instance().arm({});
    if (!fault.errors || report.hit.empty())
        add(report.findings, harness.link.errors());
    return report;
}

void PrintTo(const FaultCase& fault, std::ostream* out) {
    *out << fault.name;
}

class EveryCall : public testing::TestWithParam<FaultCase> {
    const Watchdog watchdog{std::chrono::minutes(5)};
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
}

void letArrive(Harness& harness, void (*act)(Harness&)) {
    act(harness);
    harness.letArrive();
}

const FaultCase faultCases[] = {
    {"FailingResult", FaultKind::failure, nullptr, 200, true},
    {"NoObject", FaultKind::noObject, nullptr, 50, true},
    {"Exception", FaultKind::exception, nullptr, 200, true},
    {"ForeignException", FaultKind::foreignException, nullptr, 200, true},
    {"ConnectionDropped", FaultKind::disturbance,
     [](Harness& harness) { harness.simulation.act(R"({"do": "drop"})"); }, 200, true},
    {"MessageSent", FaultKind::disturbance,
     [](Harness& harness) { letArrive(harness, [](Harness& h) { h.send("intruder"); }); }, 200,
     false},
    {"AlarmRaised", FaultKind::disturbance,
     [](Harness& harness) { letArrive(harness, [](Harness& h) { h.raise("intruder", 1); }); }, 200,
     false},
    {"AlarmCleared", FaultKind::disturbance,
     [](Harness& harness) { letArrive(harness, [](Harness& h) { h.act("clear", "standing"); }); },
     200, false},
    {"AlarmConfirmed", FaultKind::disturbance,
     [](Harness& harness) { letArrive(harness, [](Harness& h) { h.act("confirm", "waiting"); }); },
     200, false},
    {"DatabaseChanged", FaultKind::disturbance,
     [](Harness& harness) {
         letArrive(harness, [](Harness& h) {
             h.simulation.act(R"({"do": "databaseChanged", "reason": 2})");
         });
     },
     200, true},
};

std::string nameOf(const testing::TestParamInfo<FaultCase>& fault) {
    return fault.param.name;
}

INSTANTIATE_TEST_SUITE_P(Faults, EveryCall, testing::ValuesIn(faultCases), nameOf);

/// A library that loses a notification or a reference must be found out, each time.
TEST(Checks, SeeADefectOfTheLibrary) {
    const Watchdog watchdog(std::chrono::minutes(5));
    for (const FaultKind kind : {FaultKind::swallowedNotification, FaultKind::forgottenRelease}) {
        const FaultCase defect{"", kind, nullptr, 0, false};
        unsigned position = 1;
        for (;; ++position) {
            const Report report = run(defect, position, std::chrono::milliseconds(0));
            if (report.hit.empty())
                break;
            EXPECT_THAT(report.findings, Not(IsEmpty())) << report.hit << " " << position;
        }
        EXPECT_GT(position, 4U);
    }
}

}  // namespace
