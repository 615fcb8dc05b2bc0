// What a reader waits for a list of 100,000 events, over a connection that stays.
#include <memory>

#include <benchmark/benchmark.h>

#include "bench/endtoend/ProcessUse.h"
#include "bench/endtoend/ServerInProcess.h"

namespace {

/// Filled once for all of them.
ServerInProcess& filledServer() {
    static const auto server = [] {
        auto filled = std::make_unique<ServerInProcess>(100'000);
        filled->act(raiseAction(50'000));
        filled->act(messageAction(50'000));
        filled->awaitTotal(100'000);
        return filled;
    }();
    return *server;
}

void list(benchmark::State& state, const char* target) {
    ServerInProcess& server = filledServer();
    server.get(target);  // so that texts are known
    std::size_t bytes = 0;
    const ProcessUse before = ProcessUse::now();
    for (auto _ : state)
        bytes = server.get(target).size();
    state.counters["cpu_us"] = ProcessUse::now().since(before).microseconds /
                               static_cast<double>(state.iterations());
    state.counters["bytes"] = static_cast<double>(bytes);
}

BENCHMARK_CAPTURE(list, count, "/api/events?limit=0");
BENCHMARK_CAPTURE(list, page, "/api/events");
BENCHMARK_CAPTURE(list, page_localized, "/api/events?locale=en-US");
BENCHMARK_CAPTURE(list, page_in_the_middle, "/api/events?offset=50000");
BENCHMARK_CAPTURE(list, page_by_priority, "/api/events?order=priority");
BENCHMARK_CAPTURE(list, page_of_two_criteria, "/api/events?kind=alarm&severity=3");
BENCHMARK_CAPTURE(list, search_many, "/api/events?text=tank");
BENCHMARK_CAPTURE(list, search_none, "/api/events?text=nothing");
BENCHMARK_CAPTURE(list, all, "/api/events?limit=100000");

}  // namespace
