// How many events a second get from a runtime into the server's list, and what one of them costs.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

#include <benchmark/benchmark.h>

#include "bench/endtoend/ProcessUse.h"
#include "bench/endtoend/ServerInProcess.h"

namespace {

using Clock = std::chrono::steady_clock;

double seconds(Clock::time_point from) {
    return std::chrono::duration<double>(Clock::now() - from).count();
}

/// 100,000 alarms that nobody knew before, at once.
void raiseBurst(benchmark::State& state) {
    constexpr std::size_t count = 100'000;
    for (auto _ : state) {
        ServerInProcess server(static_cast<unsigned>(state.range(0)));
        const ProcessUse before = ProcessUse::now();
        const auto start = Clock::now();
        server.act(raiseAction(count));
        server.awaitTotal(count);
        state.SetIterationTime(seconds(start));
        const ProcessUse used = ProcessUse::now().since(before);
        state.counters["cpu_us"] = used.microseconds / count;
        state.counters["bytes"] = used.heapBytes / count;
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

/// Without an end, for two seconds or as many as SUSTAINED_SECONDS tells: the same 1,000 alarms
/// raised again and again, or messages that push out older ones. The runtime makes no more than the
/// server takes.
void sustain(benchmark::State& state, const std::string& action, const char* operation) {
    const char* const told = std::getenv("SUSTAINED_SECONDS");
    const double length = told ? std::atof(told) : 2;
    const std::string counter = std::string("hmi_target_host_calls_total{target=\"Filler\",") +
                                "operation=\"" + operation + "\"}";
    for (auto _ : state) {
        ServerInProcess server(static_cast<unsigned>(state.range(0)));
        for (std::int64_t filled = 0; filled < state.range(0); filled += 10'000)
            server.act(messageAction(10'000));
        server.awaitTotal(static_cast<std::size_t>(state.range(0)));
        const ProcessUse before = ProcessUse::now();
        const double known = server.metric(counter);
        const auto start = Clock::now();
        std::size_t made = 0;
        for (; seconds(start) < length; made += 1000)
            server.act(action);
        const double madeFor = seconds(start);
        const auto all = known + static_cast<double>(made);
        while (server.metric(counter) < all && seconds(start) < length + 60)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        const double taken = seconds(start);
        state.SetIterationTime(taken);
        const ProcessUse used = ProcessUse::now().since(before);
        state.counters["rate"] = static_cast<double>(made) / taken;
        state.counters["cpu_us"] = used.microseconds / static_cast<double>(made);
        state.counters["lag_ms"] = 1e3 * (taken - madeFor);
        state.counters["MiB_grown"] = used.heapBytes / (1 << 20);
    }
}

void sustainRaises(benchmark::State& state) {
    sustain(state, raiseAction(1000), "raise");
}

void sustainMessages(benchmark::State& state) {
    sustain(state, messageAction(1000), "message");
}

BENCHMARK(raiseBurst)
    ->Arg(1'000)
    ->Arg(100'000)
    ->Iterations(3)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(sustainRaises)
    ->Arg(1'000)
    ->Arg(100'000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(sustainMessages)
    ->Arg(1'000)
    ->Arg(100'000)
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
