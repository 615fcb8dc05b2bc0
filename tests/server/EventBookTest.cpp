#include <algorithm>
#include <deque>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "server/events/EventBook.h"

using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::Event;
using ZrHmiSrv::Message;
using ZrHmiSrv::Severity;
using ZrHmiSrv::Timestamp;

namespace hmi {

namespace {

/// Keeps what was told since it was last asked.
struct RecordingSink final : IChangeSink {
    void post(Change change) noexcept override { changes.push_back(std::move(change)); }
    std::vector<Change> changes;
};

Alarm alarm(int id, const char* target, int seconds = 1) {
    Alarm made;
    made.set_id(id);
    made.set_time_raised(Timestamp(seconds * 1'000'000'000LL));
    made.payload().insert("targetName", target);
    return made;
}

Message message(const char* target, int seconds, int number) {
    Message made;
    made.set_time_raised(Timestamp(seconds * 1'000'000'000LL));
    made.parameters().insert("targetName", target);
    made.parameters().insert("number", number);
    return made;
}

template <class T>
Event stored(T content) {
    Event event;
    event.set_time_received(content.time_raised());
    event.set_payload(std::move(content));
    return event;
}

constexpr std::size_t all = 1'000'000;

std::vector<std::int64_t> alarmIds(const EventBook& book) {
    EventFilter alarms;
    alarms.kind = EventKind::alarm;
    std::vector<std::int64_t> ids;
    for (const EventRecordPtr& event : book.select(alarms, 0, all).events)
        ids.push_back(event->id.number);
    return ids;
}

using testing::ElementsAre;
using testing::IsEmpty;

TEST(EventBook, ResetIsOneStepAndLosesNoLiveCall) {
    RecordingSink sink;
    EventBook book(sink);
    book.raise(alarm(1, "A"));
    book.raise(alarm(2, "B"));
    book.beginReset();
    const Event batch[] = {stored(alarm(1, "A")), stored(alarm(3, "A")), stored(message("A", 5, 1)),
                           stored(message("A", 5, 1))};
    book.replaceTarget("A", batch);
    EXPECT_THAT(alarmIds(book), ElementsAre(2, 1)) << "nothing of the new set shows yet";

    Alarm cleared = alarm(3, "A");
    cleared.set_time_cleared(Timestamp(9));
    book.update(cleared);     // held by the new set only
    book.end(alarm(1, "A"));  // held by both
    book.drop(stored(message("A", 5, 1)));
    book.raise(alarm(4, "A"));    // A has been handed over: belongs to both
    book.raise(alarm(5, "B"));    // in B's batch, if it is still alive then
    book.add(message("", 6, 2));  // of no target system, so in no batch
    EXPECT_THAT(alarmIds(book), ElementsAre(5, 4, 2, 1));
    const Event of[] = {stored(alarm(2, "B"))};
    book.replaceTarget("B", of);
    book.drop(stored(alarm(2, "B")));
    sink.changes.clear();
    book.publishReset();
    ASSERT_EQ(sink.changes.size(), 1U);
    EXPECT_EQ(sink.changes[0].type, ChangeType::reset);

    EXPECT_THAT(alarmIds(book), ElementsAre(4, 3, 1));
    EXPECT_EQ(book.find({EventKind::alarm, 3})->life, EventLife::cleared);
    EXPECT_EQ(book.find({EventKind::alarm, 1})->life, EventLife::other);
    EXPECT_EQ(book.countsByTarget().at("A").messages, 1U);
    EXPECT_EQ(book.countsByTarget().at("").messages, 1U);
    EXPECT_FALSE(book.countsByTarget().contains("B"));

    book.beginReset();
    book.replaceTarget("A", {});
    book.abandonReset();
    EXPECT_THAT(alarmIds(book), ElementsAre(4, 3, 1));
    book.beginReset();
    book.replaceTarget("A", batch);
    book.replaceTarget("A", of);
    book.publishReset();
    EXPECT_THAT(alarmIds(book), ElementsAre(2)) << "the second batch replaces the first";
}

TEST(EventBook, BeyondItsCapacityTheOldestGo) {
    RecordingSink sink;
    EventBook book(sink, 2);
    book.raise(alarm(1, "A", 10));
    book.raise(alarm(2, "A", 30));
    book.raise(alarm(3, "A", 20));
    EXPECT_THAT(alarmIds(book), ElementsAre(2, 3));
    EXPECT_EQ(sink.changes.back().type, ChangeType::forgotten);
    EXPECT_EQ(sink.changes.back().event->id.number, 1);
}

/// The book as a plain list that is walked for everything.
class Model {
public:
    struct Item {
        bool isAlarm;
        int id;
        std::string target;
        int time;
        int number;
        int severity;
        bool cleared;
        bool unconfirmed;
        bool ended;
        std::uint64_t arrival;
    };

    Item* find(int id) {
        for (Item& item : items) {
            if (item.isAlarm && item.id == id)
                return &item;
        }
        return nullptr;
    }

    void put(Item item) {
        if (item.isAlarm)
            std::erase_if(items, [&](const Item& i) { return i.isAlarm && i.id == item.id; });
        items.push_back(std::move(item));
    }

    bool drop(const Item& item) {
        for (auto at = items.begin(); at != items.end(); ++at) {
            const bool same = at->isAlarm ? at->id == item.id
                                          : at->target == item.target && at->time == item.time &&
                                                at->number == item.number;
            if (at->isAlarm == item.isAlarm && same) {
                items.erase(at);  // of equal messages the oldest
                return true;
            }
        }
        return false;
    }

    std::vector<Item> select(const EventFilter& filter) const {
        std::vector<Item> selected;
        for (const Item& item : items) {
            if (matches(item, filter))
                selected.push_back(item);
        }
        std::sort(selected.begin(), selected.end(), [](const Item& a, const Item& b) {
            return a.time != b.time ? a.time > b.time : a.arrival > b.arrival;
        });
        return selected;
    }

private:
    static bool matches(const Item& item, const EventFilter& filter) {
        const bool active = item.isAlarm && !item.cleared && !item.ended;
        const bool state =
            !filter.state || (*filter.state == EventState::active    ? active
                              : *filter.state == EventState::cleared ? item.cleared
                                                                     : item.unconfirmed);
        return state && (!filter.target || *filter.target == item.target) &&
               (!filter.kind || (*filter.kind == EventKind::alarm) == item.isAlarm) &&
               static_cast<int>(filter.severity) <= item.severity;
    }

    std::vector<Item> items;  // in the order of their arrival, but for alarms that were updated
};

/// Does the same to the book and to the model.
class RandomRun {
public:
    explicit RandomRun(unsigned seed) : random(seed) {}

    void step() {
        const int kind = number(10);
        Model::Item item{kind < 6,  number(40),     targets[number(3)], number(20), number(2),
                         number(5), number(3) == 0, number(3) == 0,     false,      ++arrivals};
        item.cleared = item.isAlarm && item.cleared;
        item.unconfirmed = item.isAlarm && item.unconfirmed;
        if (kind < 3)
            raise(item);
        else if (kind < 6)
            change(item, kind == 5);
        else if (kind < 8)
            add(item);
        else
            drop(item);
    }

    void check() {
        EventFilter filter;
        if (number(2))
            filter.target = targets[number(3)];
        if (number(2))
            filter.kind = number(2) ? EventKind::alarm : EventKind::message;
        if (number(2))
            filter.state = static_cast<EventState>(number(3));
        filter.severity = static_cast<std::uint32_t>(number(2) * number(5));
        const auto expected = model.select(filter);
        const auto offset = static_cast<std::size_t>(number(8));
        const auto limit = static_cast<std::size_t>(number(20));
        const EventPage page = book.select(filter, offset, limit);
        ASSERT_EQ(page.total, expected.size());
        const std::size_t left = expected.size() - std::min(offset, expected.size());
        ASSERT_EQ(page.events.size(), std::min(limit, left));
        for (std::size_t i = 0; i < page.events.size(); ++i) {
            const Model::Item& item = expected[offset + i];
            const EventRecord& event = *page.events[i];
            ASSERT_EQ(event.alarm() != nullptr, item.isAlarm);
            ASSERT_EQ(event.target, item.target);
            ASSERT_EQ(event.position.time.seconds(), item.time + 1);
            ASSERT_TRUE(!item.isAlarm || event.id.number == item.id);
        }
    }

    void checkCounts() {
        const auto counts = book.countsByTarget();
        for (const char* target : targets) {
            EventFilter filter;
            filter.target = target;
            const auto found = counts.find(target);
            const TargetCounts of = found == counts.end() ? TargetCounts() : found->second;
            ASSERT_EQ(of.alarms + of.messages, model.select(filter).size());
            filter.state = EventState::active;
            ASSERT_EQ(of.active, model.select(filter).size());
            filter.state = EventState::unconfirmed;
            ASSERT_EQ(of.unconfirmed, model.select(filter).size());
        }
    }

private:
    int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random); }

    static Alarm toAlarm(const Model::Item& item) {
        Alarm made = alarm(item.id, item.target.c_str(), item.time + 1);
        made.set_severity(static_cast<Severity>(item.severity));
        made.set_time_cleared(Timestamp(item.cleared ? 1 : 0));
        made.set_confirmation_state(item.unconfirmed ? AlarmConfirmationState::pending
                                                     : AlarmConfirmationState::none);
        return made;
    }

    static Message toMessage(const Model::Item& item) {
        Message made = message(item.target.c_str(), item.time + 1, item.number);
        made.set_severity(static_cast<Severity>(item.severity));
        return made;
    }

    void raise(const Model::Item& item) {
        book.raise(toAlarm(item));
        model.put(item);
    }

    void change(Model::Item item, bool end) {
        end ? book.end(toAlarm(item)) : book.update(toAlarm(item));
        const Model::Item* const held = model.find(item.id);
        if (!held)
            return;
        item.arrival = held->arrival;
        item.ended = end || held->ended;
        model.put(item);
    }

    void add(Model::Item item) {
        item.severity = item.number;  // equal messages differ in nothing
        book.add(toMessage(item));
        model.put(item);
    }

    void drop(Model::Item item) {
        item.isAlarm = number(2) == 0;
        item.severity = item.number;
        const Event event = item.isAlarm ? stored(toAlarm(item)) : stored(toMessage(item));
        ASSERT_EQ(book.drop(event), model.drop(item));
    }

    static constexpr const char* targets[] = {"A", "B", ""};
    std::mt19937 random;
    RecordingSink sink;
    EventBook book{sink};
    Model model;
    std::uint64_t arrivals = 0;
};

TEST(EventBook, SelectsWhatAPlainWalkWouldSelect) {
    for (unsigned seed = 1; seed <= 5; ++seed) {
        RandomRun run(seed);
        for (int i = 0; i < 1000; ++i) {
            run.step();
            run.check();
            if (i % 10 == 0)
                run.checkCounts();
            ASSERT_FALSE(testing::Test::HasFatalFailure()) << "seed " << seed << " step " << i;
        }
    }
}

}  // namespace

}  // namespace hmi
