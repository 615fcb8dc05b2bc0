#include "robustness/Crowd.h"

#include <algorithm>
#include <array>
#include <string>

#include <gtest/gtest.h>

#include "robustness/Eventually.h"

using namespace std::chrono_literals;
using ZrHmiSrv::ErrorValue;

namespace bridge_test {

namespace {

constexpr unsigned alarmCount = 12;
constexpr const char* nobodysNetId = "9.9.9.9.1.1";

unsigned below(std::mt19937& random, unsigned limit) {
    return std::uniform_int_distribution<unsigned>(0, limit - 1)(random);
}

std::string classAndEvent(unsigned event) {
    return std::string(R"(, "class": ")") + eventClass + R"(", "event": )" + std::to_string(event);
}

/// What happens next in a runtime.
std::string randomAction(std::mt19937& random) {
    const std::string alarm =
        R"("alarm": "alarm )" + std::to_string(below(random, alarmCount)) + '"';
    const unsigned choice = below(random, 1000);
    if (choice < 350)
        return R"({"do": "raise", )" + alarm + classAndEvent(1 + below(random, 2)) + "}";
    if (choice < 600)
        return R"({"do": "clear", )" + alarm + "}";
    if (choice < 750)
        return R"({"do": "confirm", )" + alarm + "}";
    if (choice < 995)
        return R"({"do": "message")" + classAndEvent(3) + "}";
    return choice < 998 ? R"({"do": "drop"})" : R"({"do": "databaseChanged", "reason": 2})";
}

/// True for a success; any failure must be one that this disorder explains.
bool check(ErrorValue answer, std::initializer_list<ErrorValue> failures) {
    if (answer == ErrorValue::success)
        return true;
    EXPECT_NE(std::find(failures.begin(), failures.end(), answer), failures.end())
        << static_cast<unsigned>(answer);
    return false;
}

}  // namespace

Crowd::Crowd(Simulation& simulation, RunningServer& server, unsigned seed)
    : simulation(simulation), server(server) {
    for (const char* netId : {fillerNetId, packerNetId})
        for (unsigned i = 0; i < alarmCount; ++i)
            simulation.raise("alarm " + std::to_string(i), 1, netId);
    start(seed + 1, [this](Random& random) {
        runtime(random, fillerNetId);
        ++fillerSteps;
    });
    start(seed + 2, [this](Random& random) {
        runtime(random, packerNetId);
        ++packerSteps;
    });
    start(seed + 3, [this](Random& random) { operators(random); });
    start(seed + 4, [this](Random& random) { operators(random); });
    start(seed + 5, [this](Random& random) { client(random); });
    start(seed + 6, [this](Random& random) { administrator(random); });
}

template <class Act>
void Crowd::start(unsigned seed, Act act) {
    threads.emplace_back([act, seed](const std::stop_token& stop) {
        Random random(seed);
        while (!stop.stop_requested())
            act(random);
    });
}

void Crowd::waitForSteps(int steps) const {
    EXPECT_TRUE(eventually([&] { return fillerSteps >= steps && packerSteps >= steps; }));
}

void Crowd::runtime(Random& random, const char* netId) {
    simulation.act(randomAction(random), netId);
    std::this_thread::sleep_for(1ms);  // the shortest that every system has
}

void Crowd::operators(Random& random) {
    const auto page = server.events.select({}, 0, 200);
    if (page.events.empty())
        return std::this_thread::yield();
    const auto& record = page.events[below(random, static_cast<unsigned>(page.events.size()))];
    if (const auto* alarm = record->alarm()) {
        if (const auto answer = server.calls.confirm(*alarm))
            confirmed += check(answer->result(),
                               {ErrorValue::operation_failed, ErrorValue::not_connected,
                                ErrorValue::request_failed, ErrorValue::unknown_target_system});
    }
    if (const auto texts = server.calls.localize(*record, "de-DE"))
        localized += check(texts->result, {ErrorValue::not_connected, ErrorValue::request_failed,
                                           ErrorValue::unknown_target_system});
}

void Crowd::client(Random& random) {
    const auto state = server.diagnostics("Filler").get_map().get("connectionState");
    if (state.isset()) {
        EXPECT_TRUE(state == "Good" || state == "Not Connected") << state.get_string();
    }
    server.command("ListEnabledTargetSystems");
    if (below(random, 500) == 0)
        server.command("ForceReconnect", below(random, 2) == 0 ? "Filler" : "Packer");
    std::this_thread::sleep_for(1ms);
}

void Crowd::administrator(Random& random) {
    const bool enabled = below(random, 2) == 0;
    switch (below(random, 4)) {
        case 0:
            server.remove("Packer");
            break;
        case 1:
            server.configure("Packer", nobodysNetId, enabled);
            break;
        default:
            server.configure("Packer", packerNetId, enabled);
            break;
    }
    ++reconfigured;
    std::this_thread::sleep_for(10ms);
}

}  // namespace bridge_test
