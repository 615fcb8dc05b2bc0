// What the machine takes for the least that each figure needs: a hand-over between two threads, a
// copy of the bytes, a ring.
#include <condition_variable>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/circular_buffer.hpp>

#include "bench/endtoend/ProcessUse.h"

namespace {

using Item = std::shared_ptr<const std::string>;

/// A queue between two threads, as plain as it can be.
class HandOver {
public:
    void put(Item item) {
        const std::lock_guard lock(mutex);
        items.push_back(std::move(item));
        changed.notify_one();
    }
    std::deque<Item> take() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return !items.empty(); });
        return std::exchange(items, {});
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Item> items;
};

/// 100,000 blocks of 1,000 bytes, each made on one thread and kept in a ring on another.
void floorHandOver(benchmark::State& state) {
    constexpr std::size_t count = 100'000;
    for (auto _ : state) {
        HandOver queue;
        const ProcessUse before = ProcessUse::now();
        std::thread taker([&] {
            boost::circular_buffer<Item> ring(count);
            while (ring.size() < count) {
                for (Item& item : queue.take())
                    ring.push_back(std::move(item));
            }
        });
        for (std::size_t i = 0; i < count; ++i)
            queue.put(std::make_shared<const std::string>(1000, 'x'));
        taker.join();
        state.counters["cpu_us"] = ProcessUse::now().since(before).microseconds / count;
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

/// There and back, as an answer needs it.
void floorRoundTrip(benchmark::State& state) {
    HandOver there, back;
    std::thread other([&] {
        while (const Item item = there.take().front())
            back.put(item);
    });
    const auto item = std::make_shared<const std::string>("x");
    for (auto _ : state) {
        there.put(item);
        benchmark::DoNotOptimize(back.take());
    }
    there.put(nullptr);
    other.join();
}

/// A page of 100 events has about this many bytes, and a list of all 100,000 a thousand times that.
void floorCopy(benchmark::State& state) {
    const std::string json(static_cast<std::size_t>(state.range(0)), '{');
    std::string copy(json.size(), ' ');
    for (auto _ : state) {
        std::memcpy(copy.data(), json.data(), json.size());
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

/// Looks at each of 100,000 texts of an event's length.
void floorScan(benchmark::State& state) {
    const std::vector<std::string> texts(100'000, std::string(120, 'a'));
    for (auto _ : state) {
        std::size_t found = 0;
        for (const std::string& text : texts)
            found += static_cast<std::size_t>(text.find("zz") != std::string::npos);
        benchmark::DoNotOptimize(found);
    }
}

/// 100,000 times ten values into a ring.
void floorRing(benchmark::State& state) {
    for (auto _ : state) {
        boost::circular_buffer<std::vector<std::string>> ring(100'000);
        while (!ring.full())
            ring.push_back(std::vector<std::string>(10, "Main.Filler.Tank"));
        benchmark::DoNotOptimize(ring);
    }
}

BENCHMARK(floorHandOver)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(floorRoundTrip)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(floorCopy)->Unit(benchmark::kMillisecond)->Arg(60'000)->Arg(60'000'000);
BENCHMARK(floorScan)->Unit(benchmark::kMillisecond);
BENCHMARK(floorRing)->Unit(benchmark::kMillisecond);

}  // namespace
