/// What a localization costs whose texts were looked up before: one look-up, and a whole event with
/// its four, on one thread and on two that share the target system; and for comparison a look-up
/// that misses, against a simulated runtime in this process.
#include <array>
#include <atomic>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/HeapCounter.h"
#include "events/EventContext.h"
#include "localization/EventLocalizer.h"
#include "simulator/Control.h"
#include "targetsystem/LoggerConnection.h"
#include "targetsystem/TextLookup.h"
#include "targetsystem/proxy/Guid.h"

namespace {

using namespace ZrHmiEventLogger;
using ZrHmiSrv::Binary;
using ZrHmiSrv::Value;

constexpr LCID english = 0x0409;
constexpr const char* netId = "5.10.20.30.1.1";
constexpr const char* eventClass = "{0000ABCD-0001-0002-0304-05060708090A}";
constexpr const char* plant = R"({"localNetId": "5.10.20.1.1.1", "runtimes": {"5.10.20.30.1.1": {
    "eventClasses": {"{0000ABCD-0001-0002-0304-05060708090A}": {"name": {"1033": "Machine"},
        "events": {"1": {"kind": "alarm", "severity": 3, "confirm": true,
            "text": {"1033": "Temperature {0} too high"},
            "causeRemedy": [{"id": "a", "cause": {"1033": "Pump off"},
                             "remedy": {"1033": "Start it"}}],
            "details": [{"key": "k", "text": {"1033": "Detail"}, "comment": {"1033": "More"}}]}}}},
    "sources": {"Tank": {"1033": "Tank 1"}}}}})";

class Silence final : public ILoggingFunctions {
public:
    void logMessage(ZrHmiSrv::Message) override {}
    void reportCommunicationError(const ZrHmiSrv::Text&) override {}
    void reportCommunicationError(const ZrHmiSrv::Text&, const std::exception&) override {}
    void sendMessage(ZrHmiSrv::Message) override {}
    void raiseAlarm(ZrHmiSrv::Alarm) override {}
    void updateAlarm(ZrHmiSrv::Alarm, bool) override {}
    void forgetEvent(ZrHmiSrv::Event) override {}
    bool preloadTranslations() override { return preload; }

    std::atomic<bool> preload = false;
};

/// A target system as far as its texts go, connected to the simulated runtime.
class Target {
public:
    Target() {
        char* answer = nullptr;
        const bool loaded = ZrSimulatorLoadPlant(plant, &answer) == 200;
        ZrSimulatorFree(answer);
        if (!loaded || FAILED(connection.create()))
            std::abort();
        connection.connect(netId, false, context);
        connection.setState({true, S_OK});
    }
    ~Target() { ZrSimulatorShutdown(); }

    Silence logging;

private:
    std::atomic<bool> never = false;
    std::atomic<std::int32_t> hostIds = 1;
    EventContext context{"Filler", "Bench", logging, hostIds, 0, {}, never, never};
    LoggerConnection connection;

public:
    TextLookup lookup{context, connection, never};
};

Binary bytes(std::span<const std::uint8_t> content) {
    return Binary(std::as_bytes(content));
}

Binary oneNumber() {
    return bytes(std::array<std::uint8_t, 2>{3, 0});
}

Binary number(std::size_t value) {
    return bytes(std::array<std::uint8_t, 4>{static_cast<std::uint8_t>(value),
                                             static_cast<std::uint8_t>(value >> 8), 0, 0});
}

/// The events of an operator's page: one text each, everything else in common.
class Page {
public:
    static constexpr std::size_t size = 100;

    Page() {
        for (std::size_t index = 0; index < size; ++index)
            events.push_back(
                {ZrAtlCom::parseGuid(eventClass), 1, "Tank", oneNumber(), number(index)});
    }
    const EventReference& next() { return events[++position % size]; }

private:
    std::vector<EventReference> events;
    std::size_t position = 0;
};

class Item final : public ZrHmiSrv::ILocalizable {
public:
    explicit Item(std::size_t index) : values(ZrHmiSrv::ValueType::structure) {
        values.insert("targetName", "Filler");
        values.insert("eventClass", eventClass);
        values.insert("eventId", 1.0);
        values.insert("sourceName", "Tank");
        values.insert("numArguments", 1.0);
        values.insert("types", oneNumber());
        values.insert("data", number(index));
    }
    Kind kind() const override { return Kind::alarm; }
    const char* name() const override { return ""; }
    const char* domain() const override { return ""; }
    ZrHmiSrv::Timestamp time_received() const override { return {}; }
    const char* text() const override { return ""; }
    Value& parameters() override { return values; }

private:
    Value values;
};

/// Shared by the threads of a run.
Target& sharedTarget() {
    static Target target;
    return target;
}

void countAllocations(benchmark::State& state, const HeapUse& before) {
    if (state.threads() == 1)
        state.counters["allocations"] =
            static_cast<double>(HeapUse::now().allocations - before.allocations) /
            static_cast<double>(state.iterations());
}

void cachedText(benchmark::State& state) {
    TextLookup& lookup = sharedTarget().lookup;
    Page page;
    for (std::size_t index = 0; index < Page::size; ++index)
        lookup.eventText(page.next(), english);
    const HeapUse before = HeapUse::now();
    for (auto _ : state)
        benchmark::DoNotOptimize(lookup.eventText(page.next(), english));
    state.SetItemsProcessed(state.iterations());
    countAllocations(state, before);
}

void missedText(benchmark::State& state) {
    Target& target = sharedTarget();
    target.logging.preload = true;
    target.lookup.clearCache();
    Page page;
    for (auto _ : state)
        benchmark::DoNotOptimize(target.lookup.eventText(page.next(), english));
    state.SetItemsProcessed(state.iterations());
    target.logging.preload = false;
}

void cachedEvent(benchmark::State& state) {
    Target& target = sharedTarget();
    const EventLocalizer localizer([&target](std::string_view) {
        return std::shared_ptr<TextLookup>(std::shared_ptr<void>(), &target.lookup);
    });
    std::vector<Item> page;
    for (std::size_t index = 0; index < Page::size; ++index)
        page.emplace_back(index);
    ZrHmiSrv::String text;
    const HeapUse before = HeapUse::now();
    std::size_t position = 0;
    for (auto _ : state) {
        Item item = page[++position % Page::size];
        benchmark::DoNotOptimize(localizer.localize("en-US", item, text));
    }
    state.SetItemsProcessed(state.iterations());
    countAllocations(state, before);
}

BENCHMARK(cachedText)->Threads(1)->Threads(2)->UseRealTime();
BENCHMARK(cachedEvent)->Threads(1)->Threads(2)->UseRealTime();
BENCHMARK(missedText);

}  // namespace
