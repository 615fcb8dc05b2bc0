#include "robustness/Harness.h"

#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "localization/EventLocalizer.h"
#include "localization/LocalizableItem.h"
#include "robustness/Deliveries.h"
#include "robustness/FaultPlan.h"
#include "robustness/SimulatedLibrary.h"
#include "targetsystem/TargetSystemPlatformSpecific.h"

using namespace std::chrono_literals;
using ZrHmiEventLogger::EventLocalizer;
using ZrHmiEventLogger::ImportResultPtr;
using ZrHmiEventLogger::TargetSystem;
using ZrHmiEventLogger::TargetSystemPlatformSpecific;
using ZrHmiEventLogger::TargetSystemSettings;
using ZrHmiEventLogger::TextLookup;
using ZrHmiSrv::Alarm;

namespace bridge_test {

namespace {

constexpr ULONG eventLimit = 100;

/// An event from before everything: a message, and an alarm whose end nobody has logged.
std::string oldLog() {
    const auto entry = [](int event, const char* source, const char* time) {
        return R"({"class": ")" + std::string(eventClass) + R"(", "event": )" +
               std::to_string(event) + R"(, "source": {"name": ")" + source +
               R"("}, "timeRaised": ")" + time + "\"}";
    };
    return "[" + entry(3, "old news", "2024-05-01T12:00:00Z") + "," +
           entry(2, "lost end", "2024-05-01T13:00:00Z") + "]";
}

std::string event(int id, const char* source) {
    return R"("class": ")" + std::string(eventClass) + R"(", "event": )" + std::to_string(id) +
           R"(, "source": {"name": ")" + source + R"("}, "arguments": [7], "json": "{}")";
}

}  // namespace

std::string raiseAction(const char* name, int id, const char* more) {
    return R"({"do": "raise", "alarm": ")" + std::string(name) + "\", " + event(id, name) + more +
           "}";
}

std::string messageAction(const char* name, const char* more) {
    return R"({"do": "message", )" + event(3, name) + more + "}";
}

std::string alarmAction(const char* verb, const char* alarm) {
    return R"({"do": ")" + std::string(verb) + R"(", "alarm": ")" + alarm + "\"}";
}

Harness::Harness() : simulation(oldLog()) {}

Harness::~Harness() {
    if (target)
        retire();
}

void Harness::create() {
    constexpr int attempts = 3;
    for (int i = 0; i < attempts && !target; ++i) {
        try {
            if (!tryCreate())
                retire();
        } catch (...) {
            // As for a configuration that is refused: the host tries again.
        }
    }
    ASSERT_TRUE(target);
}

bool Harness::tryCreate() {
    TargetSystemSettings settings{"Filler", fillerNetId, true,
                                  ZrHmiSrv::Timespan::from_milliseconds(20'000), eventLimit};
    const std::size_t failed = host.logged("CAN_NOT_CREATE_PROXY");
    const auto timeouts = callsOf("SetTimeout");
    target = TargetSystemPlatformSpecific<TargetSystem>::make(
        settings, "TestDomain", localAddress, link, stopFlag, hostIds);
    if (host.logged("CAN_NOT_CREATE_PROXY") != failed)
        return false;
    EXPECT_EQ(callsOf("SetTimeout"), timeouts + 1) << "a logger without its time-out";
    return true;
}

void Harness::connect() {
    ImportResultPtr imported;
    target->Connect(imported);
    refresh();
}

bool Harness::tick() {
    ImportResultPtr imported;
    const bool changed = target->CheckConnection(imported);
    if (changed)
        refresh();
    return changed;
}

void Harness::retire() {
    target->retire(TargetSystem::TimePoint::max());
    target.reset();
}

LONG Harness::postFence() {
    Lock lock(fenceMutex);
    const LONG fence = Deliveries::instance().nextFence();
    simulation.act(R"({"do": "databaseChanged", "reason": )" + std::to_string(fence) + "}");
    return fence;
}

bool Harness::fence() {
    const LONG fence = postFence();
    do {
        // Time and again: what is delivered may make the runtime hold back the rest.
        simulation.act(R"({"do": "release"})");
        if (!isConnected())
            return false;
    } while (!Deliveries::instance().waitFor(fence, 1ms));
    return true;
}

void Harness::letArrive() {
    const LONG fence = postFence();
    if (!Deliveries::onThisThread())
        Deliveries::instance().waitFor(fence, 2ms);
}

Alarm Harness::shown(const char* name) {
    Alarm found;
    host.look([&] {
        for (const auto& [id, alarm] : host.alarms)
            if (sourceOf(alarm) == name)
                found = alarm;
    });
    return found;
}

const char* const Harness::expectedTexts =
    "Temperatur 7 zu hoch, Maschine, Pump off, Start it, Detail, More";

std::string Harness::localize(const Alarm& alarm) {
    if (!alarm.isset())
        return {};
    const EventLocalizer localizer(
        [this](std::string_view) { return std::shared_ptr<TextLookup>(target, &target->texts()); });
    LocalizableItem item(alarm.payload());
    ZrHmiSrv::String text;
    if (!localizer.localize("de-DE", item, text).succeeded())
        return {};
    const auto cause = item.get("causeRemedy").get_vector().get(0).get_map();
    const auto detail = item.get("details").get_map().get("k").get_map();
    std::string all(text.name().view());
    for (const ZrHmiSrv::Value& part :
         {item.get("eventClassName"), cause.get("cause"), cause.get("remedy"), detail.get("text"),
          detail.get("comment")})
        all += ", " + part.get_string();
    return all;
}

Findings Harness::settle(bool importAgain) {
    FaultPlan::instance().suspend(true);
    if (importAgain)
        target->RequestReconnect();
    Findings findings;
    // In a calm round nothing changed any more: what differs after the second one will for ever.
    for (int calm = 0, rounds = 0; calm < 2 && rounds < 20; ++rounds) {
        const bool changed = tick();
        const bool connected = fence();
        const auto create = [](REFCLSID classId, REFIID interfaceId, void** object) {
            return SimulatedLibrary::instance().createInstance(classId, interfaceId, object);
        };
        findings = checkContent(*target, host, readLogger(*+create, fillerNetId, eventLimit));
        if (connected && !changed) {
            if (findings.empty())
                break;
            ++calm;
        } else {
            calm = 0;
        }
    }
    if (const auto texts = localize(shown("waiting")); texts != expectedTexts)
        findings.push_back("texts: " + texts);
    for (const auto& more : {link.idConflicts(), Deliveries::instance().takeComplaints()})
        findings.insert(findings.end(), more.begin(), more.end());
    FaultPlan::instance().suspend(false);
    return findings;
}

Findings Harness::complaints() {
    Findings complaints = link.errors();
    host.look([&] {
        for (const char* name : {"UNKNOWN_ALARM_CLEARED", "UNKNOWN_ALARM_CONFIRMED",
                                 "TARGET_SYSTEM_CONNECT_FAILED", "FORGET_EVENT"})
            if (host.logged(name) != 0)
                complaints.emplace_back(name);
    });
    return complaints;
}

Findings Harness::findLeaks(std::chrono::milliseconds patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while ((references() != 0 || standIns() != 0) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    Findings findings;
    if (references() != 0)
        findings.push_back(std::to_string(references()) + " references not released");
    if (standIns() != 0)
        findings.push_back(std::to_string(standIns()) + " stand-ins not released");
    return findings;
}

}  // namespace bridge_test
