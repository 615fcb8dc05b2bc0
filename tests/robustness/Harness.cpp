#include "robustness/Harness.h"

#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "robustness/Deliveries.h"
#include "robustness/FaultPlan.h"
#include "robustness/SimulatedLibrary.h"
#include "target/TargetSystemPlatformSpecific.h"

using namespace std::chrono_literals;
using ZrHmiEventLogger::ImportResultPtr;
using ZrHmiEventLogger::TargetSystem;
using ZrHmiEventLogger::TargetSystemPlatformSpecific;
using ZrHmiEventLogger::TargetSystemSettings;

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
    target = TargetSystemPlatformSpecific<TargetSystem>::make(settings, "TestDomain", link,
                                                              stopFlag, hostIds);
    return host.logged("CAN_NOT_CREATE_PROXY") == failed;
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
    target->retire();
    target.reset();
}

void Harness::raise(const char* name, int id) {
    simulation.act(R"({"do": "raise", "alarm": ")" + std::string(name) + "\", " + event(id, name) +
                   "}");
}

void Harness::act(const char* verb, const char* alarm) {
    simulation.act(R"({"do": ")" + std::string(verb) + R"(", "alarm": ")" + alarm + "\"}");
}

void Harness::send(const char* source) {
    simulation.act(R"({"do": "message", )" + event(3, source) + "}");
}

LONG Harness::postFence() {
    const LONG fence = Deliveries::instance().nextFence();
    simulation.act(R"({"do": "databaseChanged", "reason": )" + std::to_string(fence) + "}");
    return fence;
}

bool Harness::fence() {
    const LONG fence = postFence();
    while (!Deliveries::instance().waitFor(fence, 1ms))
        if (!isConnected())
            return false;
    return true;
}

void Harness::letArrive() {
    const LONG fence = postFence();
    if (!Deliveries::onThisThread())
        Deliveries::instance().waitFor(fence, 2ms);
}

Findings Harness::settle() {
    FaultPlan::instance().suspend(true);
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
    for (const std::string& conflict : link.idConflicts())
        findings.push_back(conflict);
    FaultPlan::instance().suspend(false);
    return findings;
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
