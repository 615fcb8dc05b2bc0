/// What it costs to keep a limited number of events: one insertion with the eviction that it
/// causes, for the store, for the plain walk over groups of equal time, and for two bare containers
/// that do less (no look-ups, nothing live is kept); and what a look-up costs. Every operation
/// makes its event anew, as a notification does; "nothing" makes it and drops it.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <deque>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/InertAlarm.h"
#include "bench/PlainRing.h"
#include "events/LimitedEventContainer.h"
#include "events/ScopedEventPointer.h"

namespace {

using namespace ZrHmiEventLogger;
using ZrEventLoggerFnxProxyLib::IZrAlarm;
using ZrHmiSrv::Event;
using ZrHmiSrv::Timestamp;
using Pointer = ScopedEventPointer<IZrAlarm>;
using Store = LimitedEventContainer<Pointer, IZrAlarm>;

struct Item {
    std::shared_ptr<Pointer> pointer;
    Event event;

    std::int64_t time() const { return event.time_received().nanoseconds(); }
};

Event makeMessage(std::int64_t time) {
    Event event;
    event.set_time_received(Timestamp(time));
    event.set_payload(ZrHmiSrv::Message());
    return event;
}

Event makeAlarm(std::int64_t time, int id) {
    ZrHmiSrv::Alarm alarm;
    alarm.set_id(id);
    Event event;
    event.set_time_received(Timestamp(time));
    event.set_payload(std::move(alarm));
    return event;
}

/// Messages and, in the share that is asked for, live alarms, so many at a time.
class Feed {
public:
    Feed(std::int64_t burst, std::int64_t livePercent) : burst(burst), livePercent(livePercent) {}

    Item next() {
        const std::int64_t time = ++count / burst;
        if (count % 100 >= livePercent)
            return {nullptr, makeMessage(time)};
        return {std::make_shared<Pointer>(&alarm), makeAlarm(time, static_cast<int>(count))};
    }

private:
    std::int64_t burst;
    std::int64_t livePercent;
    std::int64_t count = 0;
    InertAlarm alarm;
};

class Nothing {
public:
    static constexpr const char* name = "nothing";
    Nothing(std::size_t, std::int64_t) {}
    void insert(Item item) { benchmark::DoNotOptimize(item); }
};

using Ring = PlainRing<Item>;

class BareMultimap {
public:
    static constexpr const char* name = "multimap";
    BareMultimap(std::size_t limit, std::int64_t) : limit(limit) {}
    void insert(Item item) {
        const std::int64_t time = item.time();
        items.emplace_hint(items.end(), time, std::move(item));
        if (items.size() > limit)
            items.erase(items.begin());
    }

private:
    std::size_t limit;
    std::multimap<std::int64_t, Item> items;
};

class PlainWalk {
public:
    static constexpr const char* name = "walk";
    PlainWalk(std::size_t limit, std::int64_t) : limit(limit) {}
    void insert(Item item) {
        groups[item.time()].push_back(std::move(item));
        if (++size > limit)
            evict();
    }

private:
    void evict() {
        std::size_t total = 0;
        auto group = groups.end();
        while (total + std::prev(group)->second.size() < limit)
            total += (--group)->second.size();
        auto& cut = (--group)->second;
        cut.resize(std::min(cut.size(), limit - total));
        groups.erase(groups.begin(), group);
        size = limit;
    }

    std::size_t limit;
    std::size_t size = 0;
    std::map<std::int64_t, std::vector<Item>> groups;
};

/// The store, with the oldest live alarm released whenever there are more than their share.
class LimitedStore {
public:
    static constexpr const char* name = "store";
    LimitedStore(std::size_t limit, std::int64_t livePercent)
        : limit(static_cast<std::int64_t>(limit)),
          maximumLive(limit * static_cast<std::size_t>(livePercent) / 100) {
        store.setEvictionCallback([](std::int64_t, const ZrHmiSrv::Value& payload) {
            benchmark::DoNotOptimize(&payload);
        });
    }
    void insert(Item item) {
        const std::int64_t time = item.time();
        const AlarmKey key{Timestamp(time), 1};
        Store::Entry* entry = store.insert(std::move(item.event.payload()),
                                           {std::move(item.pointer), key}, limit, time);
        if (!entry->isLive())
            return;
        live.push_back(entry);
        if (live.size() > maximumLive) {
            store.release(*live.front(), limit);
            live.pop_front();
        }
    }

private:
    std::int64_t limit;
    std::size_t maximumLive;
    Store store;
    std::deque<Store::Entry*> live;
};

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Sets beside a run of the store how many times as long as the references it took, the median of
/// whose repetitions counts.
void compare(benchmark::State& state, const std::string& name, double seconds) {
    static std::map<std::string, std::vector<double>> costs;
    std::string arguments;
    for (std::size_t index = 0; index < 3; ++index)
        arguments += "/" + std::to_string(state.range(index));
    costs[name + arguments].push_back(seconds);
    if (name != LimitedStore::name)
        return;
    for (const char* reference : {Ring::name, BareMultimap::name, PlainWalk::name})
        if (const auto found = costs.find(reference + arguments); found != costs.end())
            state.counters[std::string("x_") + reference] = seconds / median(found->second);
}

/// Arguments: limit, events that share a time, percentage of live alarms.
template <class Container>
void insertAndEvict(benchmark::State& state) {
    const auto limit = static_cast<std::size_t>(state.range(0));
    Feed feed(state.range(1), state.range(2));
    Container container(limit, state.range(2));
    for (std::size_t count = 0; count < limit; ++count)
        container.insert(feed.next());
    const std::clock_t start = std::clock();
    for (auto _ : state)
        container.insert(feed.next());
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    compare(state, Container::name, seconds / static_cast<double>(state.iterations()));
}

/// One insertion with its eviction in a store of 1,000 events, behind which so many older alarms
/// are still live.
void insertAheadOfLiveAlarms(benchmark::State& state) {
    constexpr std::int64_t limit = 1'000;
    InertAlarm alarm;
    Store store;
    for (std::int64_t time = 1; time <= state.range(0); ++time)
        store.insert(makeAlarm(time, static_cast<int>(time)),
                     {std::make_shared<Pointer>(&alarm), {Timestamp(time), {}}}, limit);
    std::int64_t now = state.range(0);
    for (std::int64_t count = 0; count < limit; ++count)
        store.insert(makeMessage(++now), {}, limit);
    for (auto _ : state)
        store.insert(makeMessage(++now), {}, limit);
}

/// A store of live alarms and nothing else, looked into in random order.
class LookUps {
public:
    explicit LookUps(std::size_t count) : alarms(count) {
        for (std::size_t index = 0; index < count; ++index) {
            const auto time = static_cast<std::int64_t>(index / 10);
            const auto number = static_cast<std::uint32_t>(index % 10);
            store.insert(makeAlarm(time, static_cast<int>(index)),
                         {std::make_shared<Pointer>(&alarms[index]), {Timestamp(time), number}},
                         static_cast<std::int64_t>(count));
        }
        std::mt19937 random(1);
        for (std::size_t& index : order)
            index = std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    }

    std::size_t next() { return order[++position % order.size()]; }

    std::vector<InertAlarm> alarms;
    Store store;

private:
    std::vector<std::size_t> order = std::vector<std::size_t>(1 << 16);
    std::size_t position = 0;
};

void findByPointer(benchmark::State& state) {
    LookUps world(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(world.store.findByPointer(&world.alarms[world.next()]));
}

void findById(benchmark::State& state) {
    LookUps world(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(world.store.findById(static_cast<int>(world.next())));
}

void findByAlarmKey(benchmark::State& state) {
    LookUps world(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        const std::size_t index = world.next();
        benchmark::DoNotOptimize(world.store.find({Timestamp(static_cast<std::int64_t>(index / 10)),
                                                   static_cast<std::uint32_t>(index % 10)}));
    }
}

/// The reference of the look-ups.
void findInUnorderedMap(benchmark::State& state) {
    LookUps world(static_cast<std::size_t>(state.range(0)));
    std::unordered_map<const IZrAlarm*, const InertAlarm*> map;
    for (const InertAlarm& alarm : world.alarms)
        map.emplace(&alarm, &alarm);
    for (auto _ : state)
        benchmark::DoNotOptimize(map.find(&world.alarms[world.next()]));
}

void everyKind(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"limit", "burst", "live"})
        ->ArgsProduct({{1'000, 10'000, 100'000}, {1, 100}, {0, 10}});
}

void withoutLive(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"limit", "burst", "live"})
        ->ArgsProduct({{1'000, 10'000, 100'000}, {1, 100}, {0}});
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1'000)->Arg(100'000);
}

BENCHMARK_TEMPLATE(insertAndEvict, Nothing)->Apply(everyKind);
BENCHMARK_TEMPLATE(insertAndEvict, Ring)->Apply(everyKind);
BENCHMARK_TEMPLATE(insertAndEvict, BareMultimap)->Apply(everyKind);
BENCHMARK_TEMPLATE(insertAndEvict, PlainWalk)->Apply(withoutLive);
BENCHMARK_TEMPLATE(insertAndEvict, LimitedStore)->Apply(everyKind);
BENCHMARK(insertAheadOfLiveAlarms)->Arg(0)->Arg(100)->Arg(10'000)->Arg(100'000);
BENCHMARK(findByPointer)->Apply(sizes);
BENCHMARK(findById)->Apply(sizes);
BENCHMARK(findByAlarmKey)->Apply(sizes);
BENCHMARK(findInUnorderedMap)->Apply(sizes);

}  // namespace
