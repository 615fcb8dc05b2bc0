// How long an operator's page waits to see a change.
#include <chrono>

#include <benchmark/benchmark.h>

#include "bench/endtoend/ServerInProcess.h"

namespace {

void raiseToStream(benchmark::State& state) {
    ServerInProcess server(1000);
    server.follow();
    const std::string raise = raiseAction(1);
    for (auto _ : state) {
        server.act(raise);
        benchmark::DoNotOptimize(server.awaitLine("\"type\":\"raised\""));
    }
}

/// From the request that confirms to the line that says that the logger has confirmed.
void confirmToStream(benchmark::State& state) {
    ServerInProcess server(1000);
    server.follow();
    const std::string raise = raiseAction(1);
    for (auto _ : state) {
        state.PauseTiming();
        server.act(raise);
        const std::string line = server.awaitLine("\"type\":\"raised\"");
        const auto at = line.find("\"id\":") + 5;
        const std::string id = line.substr(at, line.find(',', at) - at);
        state.ResumeTiming();
        server.post("/api/events/" + id + "/confirm", "{}");
        server.awaitLine("\"type\":\"updated\"");
        state.PauseTiming();
        server.act(R"({"do": "clear", "alarm": "A"})");
        server.awaitLine("\"type\":\"removed\"");
        state.ResumeTiming();
    }
}

BENCHMARK(raiseToStream)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(confirmToStream)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
