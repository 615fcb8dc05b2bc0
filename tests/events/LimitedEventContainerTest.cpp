#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "events/LimitedEventContainer.h"
#include "events/ScopedEventPointer.h"
#include "tests/events/FakeEvent.h"

namespace {

using namespace bridge_test;
using ZrHmiEventLogger::AlarmKey;
using ZrHmiEventLogger::EventKind;
using ZrHmiEventLogger::EventStatistics;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;
using Pointer = ZrHmiEventLogger::ScopedEventPointer<fnx::IZrAlarm>;
using Store = ZrHmiEventLogger::LimitedEventContainer<Pointer, fnx::IZrAlarm>;

template <class Event>
Event makeEvent(const std::string& name, std::int64_t time) {
    Event event;
    event.set_name(std::string_view(name));
    event.set_time_raised(Timestamp(time));
    return event;
}

Value makePayload(const std::string& name, EventKind kind, std::int64_t time, int id) {
    if (kind == EventKind::message)
        return makeEvent<ZrHmiSrv::Message>(name, time);
    auto alarm = makeEvent<ZrHmiSrv::Alarm>(name, time);
    alarm.set_id(id);
    if (kind == EventKind::invalidAlarm)
        alarm.set_alarm_state(ZrHmiSrv::AlarmState::invalid);
    return alarm;
}

std::string nameOf(const Value& payload) {
    return std::string(payload.get_event().name().view());
}

const fnx::IZrAlarm* alarmOf(const std::shared_ptr<Pointer>& pointer) {
    return pointer ? pointer->get() : nullptr;
}

/// The event store in its plainest form, which walks for everything: what the indexes are held
/// against.
struct PlainWalk {
    struct Entry {
        std::string name;
        EventKind kind;
        int id;  ///< of an alarm
        AlarmKey alarmKey;
        const fnx::IZrAlarm* alarm = nullptr;  ///< null unless live
        Store::Entry* handle = nullptr;        ///< of the same entry in the store
    };
    /// What is seen of an entry: key, name, live alarm.
    using Line = std::tuple<std::int64_t, std::string, const fnx::IZrAlarm*>;

    std::map<std::int64_t, std::vector<Entry>> groups;
    EventStatistics everInserted;
    std::vector<std::pair<std::int64_t, std::string>> evicted;

    void insert(std::int64_t key, const Entry& entry, std::int64_t limit) {
        groups[key].push_back(entry);
        ++everInserted.importedEventsCount;
        everInserted.importedMessagesCount += entry.kind == EventKind::message;
        everInserted.importedInvalidAlarmsCount += entry.kind == EventKind::invalidAlarm;
        enforceLimit(limit);
    }

    /// The newest group first, within a group the first: so many stay, and what is live.
    void enforceLimit(std::int64_t limit) {
        for (auto group = groups.rbegin(); group != groups.rend(); ++group) {
            std::erase_if(group->second, [&](const Entry& entry) {
                const bool leaves = limit-- <= 0 && !entry.alarm;
                if (leaves)
                    evicted.emplace_back(group->first, entry.name);
                return leaves;
            });
        }
        std::erase_if(groups, [](const auto& group) { return group.second.empty(); });
    }

    template <class Matches>
    Entry* findFirst(Matches matches) {
        for (auto& [key, entries] : groups)
            for (Entry& entry : entries)
                if (matches(key, entry))
                    return &entry;
        return nullptr;
    }

    template <class Matches>
    void eraseIf(Matches matches) {
        for (auto& group : groups)
            std::erase_if(group.second, matches);
        std::erase_if(groups, [](const auto& group) { return group.second.empty(); });
    }

    /// `first` and `last` walk the groups, in the one direction or the other.
    template <class Iterator>
    static std::vector<Line> lines(Iterator first, Iterator last) {
        std::vector<Line> lines;
        for (auto group = first; group != last; ++group)
            for (const Entry& entry : group->second)
                lines.emplace_back(group->first, entry.name, entry.alarm);
        return lines;
    }

    EventStatistics counters() const {
        EventStatistics result = everInserted;
        for (const auto& group : groups) {
            for (const Entry& entry : group.second) {
                ++(entry.alarm ? result.activeAlarmsCount : result.inactiveEventsCount);
                result.cachedMessagesCount += entry.kind == EventKind::message;
                result.cachedAlarmsCount += isAlarm(entry.kind);
                result.cachedInvalidAlarmsCount += entry.kind == EventKind::invalidAlarm;
            }
        }
        return result;
    }
};

/// Lowest and highest: each operation draws from this range.
using Limits = std::pair<std::int64_t, std::int64_t>;

/// Does the same to a store and to a plain walk.
class LimitedEventContainerAgainstWalk : public testing::TestWithParam<Limits> {
protected:
    LimitedEventContainerAgainstWalk() {
        for (int count = 0; count < 30; ++count)
            alarms.emplace_back(border);
        reportEvictions();
    }

    std::int64_t pick(std::int64_t count) {
        return std::uniform_int_distribution<std::int64_t>(0, count - 1)(random);
    }
    bool oneIn(std::int64_t count) { return pick(count) == 0; }
    std::int64_t pickLimit() {
        return GetParam().first + pick(GetParam().second - GetParam().first + 1);
    }
    EventKind pickKind() { return static_cast<EventKind>(pick(3)); }
    int pickId() { return static_cast<int>(pick(30)); }
    FakeEvent& pickAlarm() { return alarms[static_cast<std::size_t>(pick(30))]; }
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

    PlainWalk::Entry* pickEntry() {
        std::int64_t left = pick(static_cast<std::int64_t>(store->size()) + 1);
        return walk.findFirst([&](std::int64_t, const auto&) { return left-- == 0; });
    }
    bool holds(const std::string& name) {
        return walk.findFirst([&](std::int64_t, const auto& entry) { return entry.name == name; });
    }

    void insert() {
        const std::int64_t time = pickTime();
        const auto key = oneIn(4) ? std::optional(time - pick(3)) : std::nullopt;
        PlainWalk::Entry entry{std::to_string(++names), pickKind(), pickId(), pickKey(time)};
        std::shared_ptr<Pointer> pointer = oneIn(2) ? nullptr : std::make_shared<Pointer>();
        if (oneIn(3)) {
            pointer = std::make_shared<Pointer>(&pickAlarm());
            entry.alarm = pointer->get();
        }
        const std::int64_t limit = pickLimit();
        entry.handle = store->insert(makePayload(entry.name, entry.kind, time, entry.id),
                                     {std::move(pointer), entry.alarmKey}, limit, key);
        walk.insert(key.value_or(time), entry, limit);
        EXPECT_EQ(entry.handle != nullptr, holds(entry.name));
    }

    void release(PlainWalk::Entry& entry) {
        const std::string name = entry.name;
        const std::int64_t limit = pickLimit();
        const Store::Released released = store->release(*entry.handle, limit);
        EXPECT_EQ(alarmOf(released.pointer), std::exchange(entry.alarm, nullptr));
        walk.enforceLimit(limit);
        EXPECT_EQ(released.evicted, !holds(name));
    }

    void erase(const PlainWalk::Entry& entry) {
        const Store::Removed removed = store->erase(*entry.handle);
        EXPECT_EQ(alarmOf(removed.pointer), entry.alarm);
        EXPECT_EQ(nameOf(removed.payload), entry.name);
        walk.eraseIf([name = entry.name](const auto& other) { return other.name == name; });
    }

    void replace(PlainWalk::Entry& entry) {
        const std::string before = std::exchange(entry.name, std::to_string(++names));
        entry.kind = pickKind();
        entry.id = pickId();
        const Value old =
            store->replace(*entry.handle, makePayload(entry.name, entry.kind, now, entry.id));
        EXPECT_EQ(nameOf(old), before);
    }

    void removeAlarms() {
        std::map<std::string, const fnx::IZrAlarm*> removed;
        for (const Store::Removed& entry : store->removeAlarms())
            removed[nameOf(entry.payload)] = alarmOf(entry.pointer);
        std::map<std::string, const fnx::IZrAlarm*> expected;
        walk.eraseIf([&](const auto& entry) {
            if (isAlarm(entry.kind))
                expected[entry.name] = entry.alarm;
            return isAlarm(entry.kind);
        });
        EXPECT_EQ(removed, expected);
    }

    void step() {
        const std::int64_t choice = pick(1000);
        PlainWalk::Entry* entry = pickEntry();
        if (choice == 0)
            removeAlarms();
        else if (choice < 600 || !entry)
            insert();
        else if (choice < 850)
            release(*entry);
        else if (choice < 900)
            erase(*entry);
        else
            replace(*entry);
    }

    LONG references() const {
        LONG sum = 0;
        for (const FakeEvent& alarm : alarms)
            sum += alarm.references;
        return sum;
    }

    void reportEvictions() {
        store->setEvictionCallback([this](std::int64_t key, const Value& payload) {
            evicted.emplace_back(key, nameOf(payload));
        });
    }

    void compareContents() {
        std::vector<PlainWalk::Line> byRank, byAge;
        const auto addTo = [](auto& lines) {
            return [&](const Store::Entry& entry) {
                lines.emplace_back(entry.key(), nameOf(entry.payload()), alarmOf(entry.pointer()));
            };
        };
        std::for_each(store->begin(), store->end(), addTo(byRank));
        store->visitOldestFirst(addTo(byAge));
        EXPECT_EQ(byRank, walk.lines(walk.groups.rbegin(), walk.groups.rend()));
        EXPECT_EQ(byAge, walk.lines(walk.groups.begin(), walk.groups.end()));
        EXPECT_EQ(store->size(), byAge.size());
        EXPECT_EQ(std::exchange(evicted, {}), std::exchange(walk.evicted, {}));
        EXPECT_EQ(store->keyCount(), walk.groups.size());
        EXPECT_TRUE(store->counters() == walk.counters());
        EXPECT_EQ(references(), static_cast<LONG>(walk.counters().activeAlarmsCount));
    }

    void compareLookUps() {
        const auto first = [&](auto matches) {
            const PlainWalk::Entry* entry = walk.findFirst(matches);
            return entry ? entry->handle : nullptr;
        };
        const int id = pickId();
        EXPECT_EQ(store->findById(id), first([&](std::int64_t, const auto& e) {
                      return e.alarm && isAlarm(e.kind) && e.id == id;
                  }));
        const fnx::IZrAlarm* alarm = &pickAlarm();
        EXPECT_EQ(store->findByPointer(alarm),
                  first([&](std::int64_t, const auto& e) { return e.alarm == alarm; }));
        const AlarmKey wanted = pickKey(now - pick(5));
        EXPECT_EQ(store->find(wanted), first([&](std::int64_t key, const auto& e) {
                      return key == wanted.timeRaised.nanoseconds() && e.alarm &&
                             e.alarmKey == wanted;
                  }));
    }

    std::mt19937_64 random{20240817};
    std::int64_t now = 0;
    std::int64_t names = 0;
    FakeBorder border;
    std::deque<FakeEvent> alarms;
    std::unique_ptr<Store> store = std::make_unique<Store>();
    PlainWalk walk;
    std::vector<std::pair<std::int64_t, std::string>> evicted;
};

TEST_P(LimitedEventContainerAgainstWalk, DoesTheSame) {
    const int operations = GetParam().second < 1000 ? 25'000 : 6'000;  // of large stores fewer
    for (int count = 0; count < operations; ++count) {
        step();
        compareContents();
        compareLookUps();
        ASSERT_FALSE(HasFailure()) << "after operation " << count;
    }
    store.reset();
    EXPECT_EQ(references(), 0);
}

INSTANTIATE_TEST_SUITE_P(Limits, LimitedEventContainerAgainstWalk,
                         testing::Values(Limits{0, 0}, Limits{1, 1}, Limits{3, 3}, Limits{-1, 12},
                                         Limits{1000, 1000}));

}  // namespace
