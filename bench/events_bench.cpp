// What an event costs on its way through the extension, with its ten parameters: conversion, the
// way from a notification to the host, the store, and the import of a long log. The fakes that
// stand for the proxy library answer at once, so what is measured is the extension.
#include <algorithm>
#include <chrono>
#include <malloc.h>
#include <memory>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/circular_buffer.hpp>

#include "bench/HeapCounter.h"
#include "bench/PlainRing.h"
#include "events/Conversion.h"
#include "events/LoggedEventImport.h"
#include "events/ProxyValue.h"
#include "targetsystem/TargetSystemPlatformSpecific.h"
#include "tests/events/FakeLogger.h"

namespace {

using namespace ZrHmiEventLogger;
using namespace bridge_test;
using ZrEventLoggerFnxProxyLib::ArgumentBlockLayout;
using ZrEventLoggerFnxProxyLib::LoggedEventType;
using ZrEventLoggerFnxProxyLib::SourceAttribute;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::Event;
using ZrHmiSrv::Text;
using ZrHmiSrv::Value;
using Clock = std::chrono::steady_clock;

const Text domain("Domain");
const Text targetName("Filler");

FakeEventData eventData(std::int64_t seconds) {
    FakeEventData data;
    data.raised = at(seconds);
    data.instanceId = 1;
    data.sourceId = 17;
    data.sourceName = "Main.Filler.Tank";
    data.sourceGuid = GUID{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    data.json = R"({"batch": 4711})";
    data.argumentCount = 2;
    data.layout = {2, 0, 4, 4, 12};
    data.block.resize(16);
    return data;
}

/// A host that takes no time, and notes when it heard of an alarm.
class Listener final : public ILoggingFunctions {
public:
    void logMessage(ZrHmiSrv::Message) override {}
    void reportCommunicationError(const Text&) override {}
    void reportCommunicationError(const Text&, const std::exception&) override {}
    void sendMessage(ZrHmiSrv::Message) override {}
    void raiseAlarm(Alarm) override {
        heard = Clock::now();
        heap = HeapUse::now();
    }
    void updateAlarm(Alarm, bool) override {}
    void forgetEvent(Event) override {}
    bool preloadTranslations() override { return false; }

    Clock::time_point heard;
    HeapUse heap{};
};

/// The pieces of one target system without a logger.
struct Pieces {
    explicit Pieces(std::int64_t limit)
        : context{targetName, domain, host, ids, limit, {}, never, never} {}

    Listener host;
    std::atomic<std::int32_t> ids = 1;
    const std::atomic<bool> never = false;
    const EventContext context;
    EventStore store{context};
    AlarmLifecycle lifecycle{context, store};
};

// --- conversion ---

void toHostAlarm(benchmark::State& state) {
    FakeBorder border;
    FakeEvent source(border, eventData(1));
    const Pieces pieces(0);
    for (auto _ : state) {
        Alarm alarm;
        ZrHmiEventLogger::toHostAlarm(alarm, source, pieces.context, 1, false);
        benchmark::DoNotOptimize(alarm);
    }
}

/// What the conversion asks for, with the answers dropped: the share of the fakes.
void proxyCalls(benchmark::State& state) {
    FakeBorder border;
    FakeEvent fake(border, eventData(1));
    IZrAlarm& source = fake;
    BYTE block[16];
    for (auto _ : state) {
        readValue(source, &IZrEvent::get_Severity);
        readValue(source, &IZrEvent::get_TimeRaised);
        readValue(source, &IZrAlarm::get_TimeConfirmed);
        readValue(source, &IZrAlarm::get_TimeCleared);
        readValue(source, &IZrAlarm::get_ConfirmationState);
        readValue(source, &IZrEvent::get_EventClass);
        readValue(source, &IZrEvent::get_EventId);
        for (const auto kind :
             {SourceAttribute::id, SourceAttribute::name, SourceAttribute::guid}) {
            VARIANT_BOOL has = VARIANT_FALSE;
            source.HasSource(kind, &has);
        }
        readValue(source, &IZrEvent::get_SourceId);
        readValue(source, &IZrEvent::get_SourceGuid);
        ScopedBstr text;
        source.get_SourceName(text.put());
        fake.get_JsonAttribute(text.put());
        readValue(source, &IZrAlarm::get_ArgumentCount);
        ArgumentBlockLayout layout{};
        fake.GetLayout(&layout);
        fake.GetBlock(block, sizeof(block));
        benchmark::DoNotOptimize(text);
    }
}

using Variant = std::variant<std::string, double, std::vector<BYTE>>;

std::vector<Variant> plainParameters() {
    std::vector<Variant> values;
    values.reserve(10);
    values.emplace_back("Filler");
    values.emplace_back("{0000ABCD-0001-0002-0304-05060708090A}");
    values.emplace_back(1.0);
    values.emplace_back(17.0);
    values.emplace_back("Main.Filler.Tank");
    values.emplace_back("{00000001-0002-0003-0405-060708090A0B}");
    values.emplace_back(R"({"batch": 4711})");
    values.emplace_back(2.0);
    values.emplace_back(std::vector<BYTE>(4));
    values.emplace_back(std::vector<BYTE>(12));
    return values;
}

/// The same ten strings and numbers, with nobody asked for them.
void vectorOfVariants(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(plainParameters());
}

// --- from the notification to the host ---

void notifyAlarm(TargetSystem& target, DISPID id, FakeEvent& alarm, bool withRemoved) {
    VARIANTARG arguments[2];
    VariantInit(&arguments[0]);
    VariantInit(&arguments[1]);
    arguments[0].vt = VT_BOOL;
    arguments[0].boolVal = VARIANT_TRUE;
    arguments[1].vt = VT_DISPATCH;
    arguments[1].pdispVal = static_cast<IZrAlarm*>(&alarm);
    DISPPARAMS parameters{withRemoved ? arguments : arguments + 1, nullptr, withRemoved ? 2U : 1U,
                          0};
    target.Invoke(id, IID_IUnknown, 0, 1, &parameters, nullptr, nullptr, nullptr);
}

/// From Invoke to the host's raiseAlarm, in a full store: each raise evicts an older event.
void raiseToHost(benchmark::State& state) {
    FakeBorder border;
    Listener host;
    const std::atomic<bool> stopping = false;
    std::atomic<std::int32_t> ids = 1;
    LocalAddress localAddress;
    const auto target = TargetSystemPlatformSpecific<TargetSystem>::make(
        TargetSystemSettings{targetName, "1.2.3.4.5.6", true, ZrHmiSrv::Timespan(), 1000}, domain,
        localAddress, host, stopping, ids);
    target->prepare();
    FakeEvent alarm(border, eventData(1));
    std::int64_t seconds = 1;
    const auto raise = [&] {
        alarm.data.raised = at(++seconds);
        notifyAlarm(*target, 3, alarm, false);
    };
    const auto clear = [&] { notifyAlarm(*target, 4, alarm, true); };
    while (seconds < 2000) {
        raise();
        clear();
    }
    HeapUse used{};
    std::vector<double> nanoseconds;
    for (auto _ : state) {
        const HeapUse before = HeapUse::now();
        const auto start = Clock::now();
        raise();
        const std::chrono::duration<double> taken = host.heard - start;
        state.SetIterationTime(taken.count());
        nanoseconds.push_back(1e9 * taken.count());
        used.allocations += host.heap.allocations - before.allocations;
        used.bytes += host.heap.bytes - before.bytes;
        clear();
    }
    const auto middle = nanoseconds.begin() + std::ssize(nanoseconds) / 2;
    std::nth_element(nanoseconds.begin(), middle, nanoseconds.end());
    using benchmark::Counter;
    state.counters["median_ns"] = *middle;
    state.counters["allocations"] =
        Counter(static_cast<double>(used.allocations), Counter::kAvgIterations);
    state.counters["bytes"] = Counter(static_cast<double>(used.bytes), Counter::kAvgIterations);
}

// --- the store ---

std::size_t heapInUse() {
    return mallinfo2().uordblks;
}

/// Heap that a stored event keeps, overhead of the allocator included.
void heapPerStoredEvent(benchmark::State& state) {
    constexpr std::size_t count = 10'000;
    FakeBorder border;
    std::vector<std::unique_ptr<FakeEvent>> alarms;
    for (std::size_t index = 0; index < count; ++index)
        alarms.push_back(
            std::make_unique<FakeEvent>(border, eventData(static_cast<std::int64_t>(index))));
    const auto perEvent = [](std::size_t from) {
        return static_cast<double>(heapInUse() - from) / static_cast<double>(count);
    };
    for (auto _ : state) {
        Pieces pieces(count);
        const std::size_t before = heapInUse();
        for (const auto& alarm : alarms)
            pieces.lifecycle.onAlarmRaised(*alarm, false);
        state.counters["live_bytes"] = perEvent(before);
        for (const auto& alarm : alarms)
            pieces.lifecycle.handle({NotificationKind::alarmCleared,
                                     ZrAtlCom::ComPtr<IZrAlarm>(alarm.get()),
                                     {},
                                     VARIANT_TRUE,
                                     {}},
                                    false);
        state.counters["history_bytes"] = perEvent(before);
    }
}

using Ring = PlainRing<Value>;

class Store {
public:
    explicit Store(std::size_t limit) : limit(static_cast<std::int64_t>(limit)) {}
    void insert(Value payload) { events.insert(std::move(payload), {}, limit); }

private:
    const std::int64_t limit;
    EventStore::Container events;
};

/// Converts an event, puts it in, and so pushes out and destroys the oldest.
template <class Container>
void keepLimited(benchmark::State& state) {
    const auto limit = static_cast<std::size_t>(state.range(0));
    FakeBorder border;
    FakeEvent source(border, eventData(1));
    source.data.type = LoggedEventType::alarm;
    const Pieces pieces(0);
    std::int64_t seconds = 1;
    Container container(limit);
    const auto put = [&] {
        source.data.raised = at(++seconds);
        container.insert(
            toHostPayload(source, pieces.context, static_cast<std::int32_t>(seconds)));
    };
    for (std::size_t index = 0; index < 2 * limit; ++index)
        put();
    for (auto _ : state)
        put();
}

void keepPlainValues(benchmark::State& state) {
    boost::circular_buffer<std::vector<Variant>> ring(static_cast<std::size_t>(state.range(0)));
    while (!ring.full())
        ring.push_back(plainParameters());
    for (auto _ : state)
        ring.push_back(plainParameters());
}

// --- import ---

/// The most heap that is in use while a step runs, as far as a look every millisecond sees it.
template <class Step>
std::size_t peakHeap(Step step) {
    std::atomic<bool> done = false;
    std::size_t most = 0;
    std::thread watching([&] {
        while (!done) {
            most = std::max(most, heapInUse());
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    step();
    done = true;
    watching.join();
    return std::max(most, heapInUse());
}

void importLog(benchmark::State& state) {
    FakeBorder border;
    FakeLogger logger(border);
    std::vector<std::unique_ptr<FakeEvent>> log;
    for (std::int64_t index = 0; index < state.range(0); ++index) {
        FakeEventData data = eventData(index);
        data.type = index % 2 == 0 ? LoggedEventType::alarm : LoggedEventType::message;
        data.isActive = false;
        log.push_back(std::make_unique<FakeEvent>(border, data));
        logger.logged.push_back(log.back().get());
    }
    Pieces pieces(state.range(0));
    NotificationRecorder notifications;
    LoggedEventImport importer(pieces.context, pieces.store, notifications, pieces.lifecycle);
    const std::size_t before = heapInUse();
    const std::size_t first = peakHeap([&] { importer.run(logger); }) - before;
    const auto store = static_cast<double>(heapInUse() - before);
    const std::size_t again = peakHeap([&] { importer.run(logger); }) - before;
    for (auto _ : state)
        importer.run(logger);
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["first_to_store"] = static_cast<double>(first) / store;
    state.counters["again_to_store"] = static_cast<double>(again) / store;
}

/// Active alarms that all rose at once, of a logger that does not number them, and known before.
void importAlarmsOfOneTime(benchmark::State& state) {
    FakeBorder border;
    FakeLogger logger(border);
    std::vector<std::unique_ptr<FakeEvent>> alarms;
    for (std::int64_t index = 0; index < 2 * state.range(0); ++index) {
        FakeEventData data = eventData(1);
        data.instanceId.reset();
        alarms.push_back(std::make_unique<FakeEvent>(border, data));
    }
    Pieces pieces(state.range(0));
    NotificationRecorder notifications;
    LoggedEventImport importer(pieces.context, pieces.store, notifications, pieces.lifecycle);
    bool second = false;
    for (auto _ : state) {
        // Other objects each time, so that ids are kept by key.
        logger.active.clear();
        for (std::size_t index = second ? 1 : 0; index < alarms.size(); index += 2)
            logger.active.push_back(alarms[index].get());
        second = !second;
        state.counters["kept"] = static_cast<double>(importer.run(logger)->keptIds);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(toHostAlarm);
BENCHMARK(proxyCalls);
BENCHMARK(vectorOfVariants);
BENCHMARK(raiseToHost)->UseManualTime();
BENCHMARK(heapPerStoredEvent)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(keepLimited, Ring)->Arg(1'000)->Arg(100'000);
BENCHMARK_TEMPLATE(keepLimited, Store)->Arg(1'000)->Arg(100'000);
BENCHMARK(keepPlainValues)->Arg(1'000)->Arg(100'000);
BENCHMARK(importAlarmsOfOneTime)->Arg(1'000)->Arg(16'000)->Unit(benchmark::kMillisecond);
BENCHMARK(importLog)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
