// What an event costs: its memory, its copies, and its map of parameters beside a plain vector of
// variants that holds the same names and numbers.
#include <cstddef>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/HeapCounter.h"
#include "host/Event.h"
#include "host/Value.h"

namespace {

using namespace ZrHmiSrv;

constexpr std::size_t parameterCount = 10;
const char* const names[parameterCount] = {
    "targetName", "eventClass",        "eventId", "sourceId",     "instanceId",
    "lcid",       "acknowledgeNeeded", "group",   "stateMachine", "infoText"};
const char* const texts[parameterCount] = {
    "line-1", "", "tank", "", "", "en-US", "", "mixer", "", "level above the limit of the tank"};

const Text& name(std::size_t index) {
    static const std::vector<Text> shared(std::begin(names), std::end(names));
    return shared[index];
}

const Text& text(std::size_t index) {
    static const std::vector<Text> shared(std::begin(texts), std::end(texts));
    return shared[index];
}

bool isText(std::size_t index) {
    return *texts[index] != '\0';
}

Value sharedParameters() {
    Value map(ValueType::map);
    map.reserve(parameterCount);
    for (std::size_t i = 0; i < parameterCount; ++i)
        map.insert(name(i), isText(i) ? Value(text(i)) : Value(static_cast<int>(i)));
    return map;
}

Value copiedParameters() {
    Value map(ValueType::map);
    map.reserve(parameterCount);
    for (std::size_t i = 0; i < parameterCount; ++i)
        map.insert(names[i], isText(i) ? Value(texts[i]) : Value(static_cast<int>(i)));
    return map;
}

using Variant = std::variant<std::string, int, double, bool>;

std::vector<std::pair<std::string, Variant>> variantParameters() {
    std::vector<std::pair<std::string, Variant>> entries;
    entries.reserve(parameterCount);
    for (std::size_t i = 0; i < parameterCount; ++i)
        entries.emplace_back(names[i],
                             isText(i) ? Variant(texts[i]) : Variant(static_cast<int>(i)));
    return entries;
}

std::vector<Variant> variants() {
    std::vector<Variant> entries;
    entries.reserve(2 * parameterCount);
    for (std::size_t i = 0; i < parameterCount; ++i) {
        entries.emplace_back(names[i]);
        entries.push_back(isText(i) ? Variant(texts[i]) : Variant(static_cast<int>(i)));
    }
    return entries;
}

Event alarmEvent() {
    Alarm alarm;
    alarm.set_name(name(1));
    alarm.set_domain(name(0));
    alarm.set_id(1);
    alarm.set_severity(Severity::error);
    alarm.set_time_raised(Timestamp(1));
    alarm.set_payload(sharedParameters());
    Event event;
    event.set_name(name(1));
    event.set_domain(name(0));
    event.set_time_received(Timestamp(1));
    event.set_payload(std::move(alarm));
    return event;
}

/// Heap that one result of `build` takes when its names and texts exist already.
template <class Build>
void countHeap(benchmark::State& state, Build build) {
    build();
    const HeapUse before = HeapUse::now();
    auto built = build();
    const HeapUse after = HeapUse::now();
    state.counters["allocations"] = static_cast<double>(after.allocations - before.allocations);
    state.counters["bytes"] = static_cast<double>(after.bytes - before.bytes);
    benchmark::DoNotOptimize(built);
}

template <class Build>
void build(benchmark::State& state, Build make) {
    for (auto _ : state)
        benchmark::DoNotOptimize(make());
    countHeap(state, make);
}

template <class Shared>
void copy(benchmark::State& state, const Shared& original) {
    for (auto _ : state) {
        Shared copied(original);
        benchmark::DoNotOptimize(copied);
    }
}

/// An alarm of the store is cleared: its event, the alarm and nothing else is copied.
void updateSharedAlarm(benchmark::State& state) {
    const Event stored = alarmEvent();
    for (auto _ : state) {
        Event event = stored;
        Alarm alarm = std::as_const(event).payload().get_alarm();
        alarm.set_time_cleared(Timestamp(2));
        event.set_payload(std::move(alarm));
        benchmark::DoNotOptimize(event);
    }
}

void lookUp(benchmark::State& state) {
    Value map(ValueType::map);
    std::vector<std::string> keys;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        keys.push_back("parameter" + std::to_string(i));
        map.insert(keys.back().c_str(), 1);
    }
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.lookup(keys[next]));
        next = next + 1 < keys.size() ? next + 1 : 0;
    }
}

void insertNames(benchmark::State& state) {
    std::vector<Text> keys;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        keys.emplace_back(std::to_string(i));
    for (auto _ : state) {
        Value map(ValueType::map);
        for (const Text& key : keys)
            map.insert(key, 1);
        benchmark::DoNotOptimize(map);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK_CAPTURE(copy, event_with_alarm, alarmEvent());
BENCHMARK_CAPTURE(copy, text_value, Value("level above the limit of the tank"));
BENCHMARK_CAPTURE(copy, number_value, Value(5));
BENCHMARK(updateSharedAlarm);
BENCHMARK_CAPTURE(build, event_with_alarm, alarmEvent);
BENCHMARK_CAPTURE(build, parameters_of_shared_texts, sharedParameters);
BENCHMARK_CAPTURE(build, parameters_of_new_texts, copiedParameters);
BENCHMARK_CAPTURE(build, vector_of_variants, variants);
BENCHMARK_CAPTURE(build, vector_of_name_and_variant, variantParameters);
BENCHMARK(lookUp)->Arg(10)->Arg(16)->Arg(17)->Arg(1000);
BENCHMARK(insertNames)->Arg(10)->Arg(100'000);

}  // namespace
