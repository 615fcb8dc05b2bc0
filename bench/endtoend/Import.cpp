// What it takes to have all events of a runtime again after its connection was lost.
#include <chrono>
#include <stdexcept>
#include <thread>

#include <benchmark/benchmark.h>

#include "bench/endtoend/ProcessUse.h"
#include "bench/endtoend/ServerInProcess.h"

namespace {

constexpr const char* imports = "hmi_target_imports_total{target=\"Filler\"}";
constexpr const char* importSeconds = "hmi_target_import_seconds_total{target=\"Filler\"}";

/// Messages, which the log has all.
void import(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    ServerInProcess server(static_cast<unsigned>(count));
    server.act(messageAction(count));
    server.awaitTotal(count);
    for (auto _ : state) {
        const double before = server.metric(importSeconds);
        const double done = server.metric(imports);
        server.post("/api/commands",
                    R"([{"command": "ForceReconnect", "writeValue": "Filler"}])");
        while (server.metric(imports) == done)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        state.SetIterationTime(server.metric(importSeconds) - before);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(import)->Arg(100'000)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(import)->Arg(1'000'000)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
