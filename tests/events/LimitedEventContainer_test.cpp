#include "events/LimitedEventContainer.h"

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "events/ScopedEventPointer.h"
#include "tests/events/InertAlarm.h"
#include "tests/events/PlainWalk.h"

namespace ZrHmiEventLogger {

namespace {

using ZrEventLoggerFnxProxyLib::IZrAlarm;
using ZrHmiSrv::Event;
using ZrHmiSrv::Timestamp;
using Pointer = ScopedEventPointer<IZrAlarm>;
using Store = LimitedEventContainer<Pointer, IZrAlarm>;

Event makeEvent(const std::string& name, EventKind kind, std::int64_t time, int id = 0) {
    Event event;
    event.set_name(std::string_view(name));
    event.set_time_received(Timestamp(time));
    if (kind == EventKind::message)
        event.set_payload(ZrHmiSrv::Message());
    if (isAlarm(kind)) {
        ZrHmiSrv::Alarm alarm;
        alarm.set_id(id);
        if (kind == EventKind::invalidAlarm)
            alarm.set_alarm_state(ZrHmiSrv::AlarmState::invalid);
        event.set_payload(alarm);
    }
    return event;
}

std::string nameOf(const Event& event) {
    return std::string(event.name().view());
}

TEST(LimitedEventContainer, KeepsTheNewestAndWhatIsLive) {
    struct Put {
        std::int64_t time;
        bool live = false;
    };
    struct Case {
        const char* what;
        std::int64_t limit;
        std::vector<Put> puts;  // named a, b, c, ...
        std::string evicted;
        std::string keptByRank;
    };
    const Case cases[] = {
        {"the oldest leaves", 3, {{1}, {2}, {3}, {4}}, "a", "dcb"},
        {"live alarms are never forgotten", 3, {{1, true}, {2, true}, {3}, {4}, {5}}, "", "edcba"},
        {"within a key the first stay", 3, {{2}, {2}, {2}, {2}, {1}}, "de", "abc"},
        {"the group at the boundary is cut", 3, {{1}, {1}, {1}, {2}, {2}}, "cb", "dea"},
        {"an old event is evicted by its own insertion", 2, {{5}, {6}, {1}}, "c", "ba"},
        {"without room only what is live stays", 0, {{1}, {2, true}, {3}}, "ac", "b"},
        {"less than no room", -1, {{1}, {2, true}}, "a", "b"},
    };
    for (const Case& example : cases) {
        SCOPED_TRACE(example.what);
        InertAlarm alarm;
        Store store;
        std::string evicted;
        store.setEvictionCallback(
            [&](std::int64_t, const Event& event) { evicted += nameOf(event); });
        std::string name = "a";
        for (const Put& put : example.puts) {
            auto pointer = put.live ? std::make_shared<Pointer>(&alarm) : nullptr;
            store.insert(makeEvent(name, EventKind::alarm, put.time), {pointer, {}}, example.limit);
            ++name[0];
        }
        std::string kept;
        for (const Store::Entry& entry : store)
            kept += nameOf(entry.event());
        EXPECT_EQ(evicted, example.evicted);
        EXPECT_EQ(kept, example.keptByRank);
    }
}

TEST(LimitedEventContainer, LeavesTheLastReferenceToAnAlarmToTheCaller) {
    InertAlarm alarm;
    Store store;
    const auto putAlarm = [&] {
        alarm.AddRef();
        ZrAtlCom::ComPtr<IZrAlarm> owned;
        owned.attach(&alarm);
        return store.insert(makeEvent("alarm", EventKind::alarm, 1),
                            {std::make_shared<Pointer>(std::move(owned)), {}}, 1);
    };
    store.insert(makeEvent("message", EventKind::message, 2), {}, 1);

    Store::Released released = store.release(*putAlarm(), 1);
    EXPECT_TRUE(released.evicted) << "it ranked beyond the limit";
    EXPECT_EQ(alarm.references, 1U);
    released.pointer.reset();
    EXPECT_EQ(alarm.references, 0U);

    Store::Removed erased = store.erase(*putAlarm());
    EXPECT_EQ(alarm.references, 1U);
    erased.pointer->reset();
    EXPECT_EQ(alarm.references, 0U);

    putAlarm();
    std::vector<Store::Removed> removed = store.removeAlarms();
    EXPECT_EQ(alarm.references, 1U);
    removed.clear();
    EXPECT_EQ(alarm.references, 0U);
    EXPECT_EQ(store.size(), 1U);

    putAlarm();
    Store().swap(store);
    EXPECT_EQ(alarm.references, 0U);
}

struct Limits {
    const char* name;
    std::int64_t lowest;
    std::int64_t highest;  ///< each operation draws from this range
    int operations;

    friend void PrintTo(const Limits& limits, std::ostream* out) { *out << limits.name; }
};

class LimitedEventContainerAgainstWalk : public testing::TestWithParam<Limits> {
protected:
    struct Expected {
        std::int64_t key;
        const PlainWalk::Entry* entry;
    };

    std::int64_t pick(std::int64_t count) {
        return std::uniform_int_distribution<std::int64_t>(0, count - 1)(random);
    }
    bool oneIn(std::int64_t count) { return pick(count) == 0; }
    std::int64_t pickLimit() {
        return GetParam().lowest + pick(GetParam().highest - GetParam().lowest + 1);
    }
    EventKind pickKind() { return static_cast<EventKind>(pick(4)); }
    int pickId() { return static_cast<int>(pick(30)); }
    InertAlarm& pickAlarm() { return alarms[static_cast<std::size_t>(pick(30))]; }
    std::int64_t pickTime() {
        now += pick(2);
        return oneIn(4) ? now - pick(40) : now;
    }
    AlarmKey pickKey(std::int64_t time) {
        AlarmKey key{Timestamp(oneIn(8) ? time - 1 : time), {}};
        if (!oneIn(3))
            key.number = static_cast<std::uint32_t>(pick(2));
        return key;
    }

    PlainWalk::Entry* named(const std::string& name) {
        return model.findFirst([&](std::int64_t, const auto& entry) { return entry.name == name; });
    }
    PlainWalk::Entry* pickEntry() {
        const auto size = static_cast<std::int64_t>(store->size());
        std::int64_t left = size == 0 ? 0 : pick(size);
        return model.findFirst([&](std::int64_t, const auto&) { return left-- == 0; });
    }

    void insert() {
        const std::int64_t time = pickTime();
        const auto key = oneIn(4) ? std::optional(time - pick(3)) : std::nullopt;
        PlainWalk::Entry entry{std::to_string(++names), pickKind(), {}, nullptr, pickKey(time)};
        if (isAlarm(entry.kind))
            entry.id = pickId();
        std::shared_ptr<Pointer> pointer = oneIn(2) ? nullptr : std::make_shared<Pointer>();
        if (oneIn(3)) {
            entry.alarm = &pickAlarm();
            pointer = std::make_shared<Pointer>(entry.alarm);
        }
        const std::int64_t limit = pickLimit();
        Store::Entry* handle =
            store->insert(makeEvent(entry.name, entry.kind, time, entry.id.value_or(0)),
                          {std::move(pointer), entry.alarmKey}, limit, key);
        model.insert(key.value_or(time), entry, limit);
        EXPECT_EQ(handle != nullptr, named(entry.name) != nullptr);
        handles[entry.name] = handle;
    }

    void release(PlainWalk::Entry& entry) {
        const std::string name = entry.name;
        const std::int64_t limit = pickLimit();
        const Store::Released released = store->release(*handles.at(name), limit);
        EXPECT_EQ(released.pointer ? released.pointer->get() : nullptr, entry.alarm);
        entry.alarm = nullptr;
        model.enforceLimit(limit);
        EXPECT_EQ(released.evicted, named(name) == nullptr);
    }

    void erase(const PlainWalk::Entry& entry) {
        const Store::Removed removed = store->erase(*handles.at(entry.name));
        EXPECT_EQ(removed.pointer ? removed.pointer->get() : nullptr, entry.alarm);
        EXPECT_EQ(nameOf(removed.event), entry.name);
        model.eraseIf([name = entry.name](const auto& other) { return other.name == name; });
    }

    void replace(PlainWalk::Entry& entry) {
        Store::Entry* handle = handles.at(entry.name);
        const std::string before = std::exchange(entry.name, std::to_string(++names));
        entry.kind = pickKind();
        entry.id = isAlarm(entry.kind) ? std::optional(pickId()) : std::nullopt;
        const Event old = store->replaceEvent(
            *handle, makeEvent(entry.name, entry.kind, now, entry.id.value_or(0)));
        EXPECT_EQ(nameOf(old), before);
        handles[entry.name] = handle;
    }

    void removeAlarms() {
        std::map<std::string, const IZrAlarm*> removed;
        for (const Store::Removed& entry : store->removeAlarms())
            removed[nameOf(entry.event)] = entry.pointer ? entry.pointer->get() : nullptr;
        std::map<std::string, const IZrAlarm*> expected;
        model.eraseIf([&](const auto& entry) {
            if (isAlarm(entry.kind))
                expected[entry.name] = entry.alarm;
            return isAlarm(entry.kind);
        });
        EXPECT_EQ(removed, expected);
    }

    void swapIntoNewStore() {
        auto fresh = std::make_unique<Store>();
        fresh->swap(*store);
        EXPECT_TRUE(store->counters() == EventStatistics());
        store->insert(makeEvent("apart", EventKind::message, now), {}, 1);
        EXPECT_EQ(store->size(), 1U);
        store = std::move(fresh);
        reportEvictions();
    }

    void step() {
        const std::int64_t choice = pick(1000);
        PlainWalk::Entry* entry = pickEntry();
        if (choice == 0)
            removeAlarms();
        else if (choice == 1)
            swapIntoNewStore();
        else if (choice < 600 || !entry)
            insert();
        else if (choice < 850)
            release(*entry);
        else if (choice < 900)
            erase(*entry);
        else
            replace(*entry);
    }

    void reportEvictions() {
        store->setEvictionCallback([this](std::int64_t key, const Event& event) {
            evicted.emplace_back(key, nameOf(event));
        });
    }

    void compareContents() {
        std::vector<const Store::Entry*> byRank, byAge;
        std::vector<Expected> expectedByRank, expectedByAge;
        for (const Store::Entry& entry : *store)
            byRank.push_back(&entry);
        store->visitOldestFirst([&](const Store::Entry& entry) { byAge.push_back(&entry); });
        for (const auto& [key, entries] : model.groups)
            for (const auto& entry : entries)
                expectedByAge.push_back({key, &entry});
        for (auto group = model.groups.rbegin(); group != model.groups.rend(); ++group)
            for (const auto& entry : group->second)
                expectedByRank.push_back({group->first, &entry});
        compareEntries(byRank, expectedByRank);
        compareEntries(byAge, expectedByAge);
        EXPECT_EQ(std::exchange(evicted, {}), std::exchange(model.evicted, {}));
        EXPECT_EQ(store->keyCount(), model.groups.size());
        EXPECT_TRUE(store->counters() == model.counters());
    }

    void compareEntries(const std::vector<const Store::Entry*>& actual,
                        const std::vector<Expected>& expected) {
        ASSERT_EQ(actual.size(), expected.size());
        ASSERT_EQ(actual.size(), store->size());
        for (std::size_t at = 0; at < actual.size(); ++at) {
            const auto& [key, entry] = expected[at];
            const auto pointer = actual[at]->pointer();
            const bool same = actual[at]->key() == key &&
                              actual[at]->event().name().view() == entry->name &&
                              (pointer ? pointer->get() : nullptr) == entry->alarm;
            if (!same)
                FAIL() << "expected " << entry->name << " at " << at << ", found "
                       << nameOf(actual[at]->event());
        }
    }

    void compareLookUps() {
        const auto handleOf = [&](const PlainWalk::Entry* entry) {
            return entry ? handles.at(entry->name) : nullptr;
        };
        const int id = pickId();
        EXPECT_EQ(store->findById(id), handleOf(model.findFirst([&](std::int64_t, const auto& e) {
                      return e.alarm && e.id == id;
                  })));
        const InertAlarm* alarm = &pickAlarm();
        EXPECT_EQ(store->findByPointer(alarm),
                  handleOf(model.findFirst(
                      [&](std::int64_t, const auto& e) { return e.alarm == alarm; })));
        const AlarmKey wanted = pickKey(now - pick(5));
        EXPECT_EQ(
            store->find(wanted), handleOf(model.findFirst([&](std::int64_t key, const auto& e) {
                return key == wanted.timeRaised.nanoseconds() && e.alarm && e.alarmKey == wanted;
            })));
    }

    std::mt19937_64 random{20240817};
    std::int64_t now = 0;
    std::int64_t names = 0;
    std::array<InertAlarm, 30> alarms;
    std::unique_ptr<Store> store = std::make_unique<Store>();
    PlainWalk model;
    std::map<std::string, Store::Entry*> handles;  ///< also of entries that left since
    std::vector<std::pair<std::int64_t, std::string>> evicted;
};

TEST_P(LimitedEventContainerAgainstWalk, DoesTheSame) {
    reportEvictions();
    for (int count = 0; count < GetParam().operations; ++count) {
        step();
        compareContents();
        compareLookUps();
        ASSERT_FALSE(HasFailure()) << "after operation " << count;
    }
    std::uint64_t references = 0;
    for (const InertAlarm& alarm : alarms)
        references += alarm.references;
    EXPECT_EQ(references, store->counters().activeAlarmsCount);
}

INSTANTIATE_TEST_SUITE_P(Limits, LimitedEventContainerAgainstWalk,
                         testing::Values(Limits{"none", 0, 0, 25'000}, Limits{"one", 1, 1, 25'000},
                                         Limits{"three", 3, 3, 25'000},
                                         Limits{"thousand", 1000, 1000, 6'000},
                                         Limits{"changing", -1, 12, 25'000}),
                         [](const auto& limits) { return std::string(limits.param.name); });

}  // namespace

}  // namespace ZrHmiEventLogger
