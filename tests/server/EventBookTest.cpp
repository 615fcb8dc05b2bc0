#include <algorithm>
#include <atomic>
#include <iterator>
#include <map>
#include <new>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <gmock/gmock.h>

#include "server/TestHeap.h"
#include "server/events/EventBook.h"
#include "server/extension/EventRefresher.h"

using testing::ElementsAre;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::Context;
using ZrHmiSrv::Event;
using ZrHmiSrv::Message;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Severity;
using ZrHmiSrv::Timestamp;

namespace hmi {

namespace {

/// What a listener to the changes holds: a plain list.
struct PlainList final : IChangeSink {
    void post(Change change) noexcept override {
        allocationsLeft = -1;  // a listener's memory is its own affair
        lastType = change.type;
        if (change.replacement) {
            const std::string& target = change.replacement->target;
            const auto& replaced = change.replacement->events;
            std::erase_if(events, [&](const auto& held) { return held->target == target; });
            events.insert(events.end(), replaced.begin(), replaced.end());
            ++replacements[target];
        }
        if (!change.event)
            return;
        lastId = change.event->id.number;
        std::erase_if(events, [&](const auto& held) { return held->id == change.event->id; });
        if (change.type != ChangeType::forgotten)
            events.push_back(std::move(change.event));
    }

    std::vector<EventRecordPtr> select(const EventFilter& filter) const {
        std::vector<EventRecordPtr> selected;
        std::copy_if(events.begin(), events.end(), std::back_inserter(selected),
                     [&](const auto& event) { return filter.matches(*event); });
        std::sort(selected.begin(), selected.end(),
                  [&](const auto& a, const auto& b) { return filter.isBefore(*a, *b); });
        return selected;
    }

    ChangeType lastType = ChangeType::log;
    std::int64_t lastId = 0;
    std::map<std::string, int> replacements;
    std::vector<EventRecordPtr> events;
};

Alarm alarm(int id, const std::string& target, int seconds = 1) {
    Alarm made;
    made.set_id(id);
    made.set_time_raised(Timestamp(seconds * 1'000'000'000LL));
    made.payload().insert("targetName", target.c_str());
    return made;
}

Message message(const std::string& target, int seconds, int number) {
    Message made;
    made.set_time_raised(Timestamp(seconds * 1'000'000'000LL));
    made.parameters().insert("targetName", target.c_str());
    made.parameters().insert("number", number);
    return made;
}

bool drop(EventBook& book, const Event& event) {
    return book.drop(EventRecord(contentOf(event).value(), 0));
}

std::vector<std::int64_t> alarmIds(const EventBook& book) {
    EventFilter alarms;
    alarms.kind = EventKind::alarm;
    std::vector<std::int64_t> ids;
    for (const EventRecordPtr& event : book.select(alarms, 0, 1'000'000).events)
        ids.push_back(event->id.number);
    return ids;
}

TEST(EventBook, AlarmsKeepTheirPlaceAndEqualMessagesGoOneByOne) {
    PlainList list;
    EventBook book(list);
    book.raise(alarm(1, "A"));
    book.raise(alarm(2, "A"));
    book.update(alarm(1, "A"));
    book.update(alarm(9, "A"));
    EXPECT_THAT(alarmIds(book), ElementsAre(2, 1));
    book.end(alarm(1, "A"));
    book.update(alarm(1, "A"));
    EXPECT_EQ(book.find({EventKind::alarm, 1})->life, EventLife::other) << "it stays ended";
    book.raise(alarm(1, "A"));
    EXPECT_THAT(alarmIds(book), ElementsAre(1, 2));
    EXPECT_EQ(book.find({EventKind::alarm, 1})->life, EventLife::active);

    const Event dropped = message("A", 5, 1);
    book.add(message("A", 5, 1));
    const std::int64_t first = list.lastId;
    book.add(message("A", 5, 1));
    book.add(message("A", 5, 2));
    EXPECT_TRUE(drop(book, dropped));
    EXPECT_EQ(list.lastId, first) << "of equal ones the oldest";
    EXPECT_TRUE(drop(book, dropped));
    EXPECT_FALSE(drop(book, dropped));
    EXPECT_EQ(book.countsByTarget().at("A").messages, 1U);
}

TEST(EventBook, AResetIsOneStepATargetSystemAndLosesNoLiveCall) {
    PlainList list;
    EventBook book(list);
    book.raise(alarm(1, "A"));
    book.raise(alarm(2, "B"));
    book.raise(alarm(3, "C"));
    book.end(alarm(1, "A"));
    book.add(message("A", 5, 1));
    book.add(message("A", 5, 1));
    const std::int64_t secondCopy = list.lastId;
    book.add(message("", 6, 1));
    Alarm cleared = alarm(3, "C");
    cleared.set_time_cleared(Timestamp(9));
    const Event batch[] = {alarm(1, "A"),      alarm(4, "A"),      message("A", 5, 1),
                           message("A", 5, 1), message("A", 5, 1), message("A", 4, 1)};
    const Event ofC[] = {cleared};

    book.beginReset();
    book.replaceTarget("A", batch);
    EXPECT_THAT(alarmIds(book), ElementsAre(4, 3, 2, 1)) << "visible before anyone else answers";
    EXPECT_EQ(book.find({EventKind::alarm, 1})->life, EventLife::active) << "the extension knows";
    EXPECT_EQ(book.countsByTarget().at("A").messages, 4U) << "every copy stands for itself";
    EXPECT_TRUE(book.find({EventKind::message, secondCopy})) << "a message keeps its id";
    book.raise(alarm(5, "A"));
    book.end(alarm(1, "A"));
    EXPECT_TRUE(drop(book, message("A", 5, 1)));
    book.raise(alarm(6, "B"));  // B hands over nothing, but this is news
    book.replaceTarget("C", ofC);
    EXPECT_EQ(book.find({EventKind::alarm, 3})->life, EventLife::cleared);
    const EventRecordPtr before = book.find({EventKind::alarm, 4});
    book.endReset();
    EXPECT_EQ(list.lastType, ChangeType::reset);
    EXPECT_THAT(alarmIds(book), ElementsAre(6, 5, 4, 3, 1));
    EXPECT_EQ(book.find({EventKind::alarm, 1})->life, EventLife::other);
    EXPECT_FALSE(book.countsByTarget().contains("")) << "in no hand-over";

    const auto told = list.replacements;
    Alarm other = alarm(4, "A");
    other.set_severity(Severity::error);
    const Event changed[] = {other, alarm(5, "A")};
    book.beginReset();
    book.replaceTarget("C", ofC);
    EXPECT_EQ(list.replacements, told) << "nothing has changed";
    book.replaceTarget("A", changed);
    EXPECT_THAT(alarmIds(book), ElementsAre(6, 5, 4, 3)) << "a changed alarm keeps its place";
    EXPECT_EQ(book.find({EventKind::alarm, 4})->severity, 3U);
    EXPECT_EQ(before->severity, 0U);
    book.abandonReset();
    EXPECT_THAT(alarmIds(book), ElementsAre(6, 5, 4, 3)) << "B may have more to say";
}

TEST(EventBook, AlarmsOfALostTargetSystemAreKeptAsideUntilItIsImported) {
    PlainList list;
    EventBook book(list);
    EventFilter all;
    all.lastKnown = true;
    const auto ids = [&](std::size_t offset, std::size_t limit) {
        std::vector<std::int64_t> found;
        for (const EventRecordPtr& event : book.select(all, offset, limit).events)
            found.push_back(event->id.number);
        return found;
    };
    for (int id = 1; id <= 6; ++id)
        book.raise(alarm(id, id % 2 ? "A" : "B", id));
    const auto request = [](const EventRecord& event) {
        auto record = std::make_shared<EventRecord>(event);
        record->confirmation =
            std::make_shared<const Confirmation>(Confirmation{.number = 7, .by = "somebody"});
        return record;
    };
    book.modify({EventKind::alarm, 3}, ChangeType::confirmation, request);
    const Event rest[] = {alarm(5, "A", 5)};
    book.replaceTarget("A", rest, false);
    EXPECT_THAT(alarmIds(book), ElementsAre(6, 5, 4, 2));
    EXPECT_THAT(ids(0, 9), ElementsAre(6, 5, 4, 3, 2, 1));
    EXPECT_THAT(ids(2, 2), ElementsAre(4, 3));
    EXPECT_THAT(ids(5, 2), ElementsAre(1));
    EXPECT_EQ(book.select(all, 9, 9).total, 6U);
    list.lastType = ChangeType::log;
    const EventRecordPtr answered =
        book.modify({EventKind::alarm, 3}, ChangeType::confirmation, request);
    EXPECT_EQ(list.lastType, ChangeType::confirmation) << "it is answered all the same";
    EXPECT_EQ(book.findLastKnown({EventKind::alarm, 3}), answered);
    EXPECT_TRUE(answered->lastKnownSince.isset());

    Alarm confirmed = alarm(3, "A", 3);
    confirmed.set_confirmation_state(AlarmConfirmationState::confirmed);
    const Event back[] = {confirmed, alarm(5, "A", 5)};
    book.replaceTarget("A", back, true);
    EXPECT_THAT(ids(0, 9), ElementsAre(6, 5, 4, 3, 2)) << "1 is gone for certain";
    const EventRecordPtr three = book.find({EventKind::alarm, 3});
    EXPECT_EQ(three->confirmation->state, ConfirmationState::confirmed)
        << "what was asked is known";
    EXPECT_FALSE(three->lastKnownSince.isset());
    book.raise(alarm(3, "A", 30));
    EXPECT_FALSE(book.find({EventKind::alarm, 3})->confirmation) << "another occurrence";

    book.replaceTarget("B", {}, false);
    EXPECT_THAT(ids(0, 9), ElementsAre(3, 6, 5, 4, 2));
    book.beginReset();
    book.replaceTarget("A", back, true);
    book.endReset();
    EXPECT_THAT(ids(0, 9), ElementsAre(5, 3)) << "B is no target system any more";
}

TEST(EventBook, AConfirmationGoesOnWhileItsAlarmIsHandedOver) {
    PlainList list;
    EventBook book(list);
    Alarm worse = alarm(3, "A");
    worse.set_severity(Severity::error);
    std::vector<std::vector<Event>> batches{{alarm(3, "A")}, {worse}, {}};  // the last: it is lost
    for (int id = 10; id < 60; ++id) {
        for (auto& batch : batches)
            batch.emplace_back(alarm(id, "A"));
    }
    book.replaceTarget("A", batches[0]);
    std::atomic<bool> isOver = false;
    std::thread extension([&] {
        for (std::size_t i = 0; i < 300; ++i)
            book.replaceTarget("A", batches[i % 3], i % 3 != 2);
        isOver = true;
    });
    for (std::uint64_t number = 1; !isOver; ++number) {
        book.modify({EventKind::alarm, 3}, ChangeType::confirmation, [&](const EventRecord& event) {
            EXPECT_EQ(event.confirmation ? event.confirmation->number : 0, number - 1);
            auto record = std::make_shared<EventRecord>(event);
            record->confirmation =
                std::make_shared<const Confirmation>(Confirmation{.number = number, .by = "eva"});
            return record;
        });
    }
    extension.join();
}

TEST(EventBook, BeyondItsCapacityTheOldestGo) {
    PlainList list;
    EventBook book(list, 2);
    book.raise(alarm(1, "A", 10));
    book.raise(alarm(2, "A", 30));
    book.raise(alarm(3, "A", 20));
    EXPECT_THAT(alarmIds(book), ElementsAre(2, 3));
    EXPECT_EQ(list.lastType, ChangeType::forgotten);
    EXPECT_EQ(list.lastId, 1);
}

/// Each of its allocations fails once.
TEST(EventBook, AHandOverThatThrowsLeavesTheListAsItWas) {
    PlainList list;
    EventBook book(list);
    EventFilter all;
    all.lastKnown = true;
    const auto state = [&] {
        std::vector<EventRecordPtr> events = book.select(all, 0, 99).events;
        const TargetCounts counts = book.countsByTarget()["A"];
        return std::tuple(std::move(events), counts.alarms, counts.messages, list.replacements);
    };
    for (const bool isImported : {false, true}) {
        book.raise(alarm(1, "A"));
        book.raise(alarm(2, "A"));
        book.add(message("A", 1, 1));
        const Event batch[] = {alarm(3, "A"), message("A", 2, 1)};
        bool isDone = false;
        for (int good = 0; !isDone; ++good) {
            const auto before = state();
            book.beginReset();
            allocationsLeft = good;
            try {
                book.replaceTarget("A", batch, isImported);
                isDone = true;
            } catch (const std::bad_alloc&) {
            }
            allocationsLeft = -1;
            if (!isDone) {
                EXPECT_EQ(state(), before) << "allocation " << good;
            }
            book.abandonReset();
        }
        EXPECT_THAT(alarmIds(book), ElementsAre(3));
        EXPECT_EQ(book.select(all, 0, 99).total, isImported ? 2U : 4U);
    }
}

struct Provider final : ZrHmiSrv::IZrHmiSrvAlarmProviderListener {
    ResultPair confirm_alarm(const Context&, const Alarm&) override { return {}; }
    ResultPair provide_events(const Context&, ZrHmiSrv::IEventReceiver& receiver) override {
        receiver.replace_events("A", {});
        return {};
    }
};

TEST(EventBook, AHandOverThatCannotBeTakenIsNoneThatWasEmpty) {
    PlainList list;
    EventBook book(list);
    ListenerRegistry listeners;
    Provider provider;
    ASSERT_TRUE(listeners.add(&provider));
    ExtensionCalls calls(listeners, Context("Test"));
    Metrics metrics;
    book.raise(alarm(1, "A"));
    EventRefresher refresher(book, calls, metrics,
                             [](const std::string&) -> bool { throw std::bad_alloc(); });
    refresher.start();
    EXPECT_THAT(alarmIds(book), ElementsAre(1));
}

/// What a target system of the extension hands over: some of what the list shows of it, and news.
void handOver(EventBook& book, std::mt19937& random, const PlainList& list, const char* target) {
    std::vector<Event> batch;
    for (const EventRecordPtr& held : list.events) {
        if (held->target == target && random() % 4 != 0)
            batch.push_back(held->event());
    }
    batch.push_back(message(target, 1 + static_cast<int>(random() % 20), 1));
    book.beginReset();
    book.replaceTarget(target, batch);
    if (random() % 8 == 0)
        book.endReset();
    ASSERT_EQ(book.countsByTarget()[target].alarms + book.countsByTarget()[target].messages,
              batch.size());
}

/// What waits for an operator, counted one by one.
void expectAttention(const EventBook& book, const PlainList& list,
                     const std::optional<std::string>& target) {
    Attention expected;
    EventFilter filter;
    filter.target = target;
    for (const EventRecordPtr& event : list.select(filter)) {
        expected.active[event->severity] += event->life == EventLife::active ? 1U : 0U;
        expected.unconfirmed[event->severity] += event->unconfirmed ? 1U : 0U;
        if (event->unconfirmed)
            expected.oldestUnconfirmed = event->position.time;
    }
    const Attention attention = book.attention(target, false);
    ASSERT_EQ(attention.active, expected.active);
    ASSERT_EQ(attention.unconfirmed, expected.unconfirmed);
    ASSERT_EQ(attention.oldestUnconfirmed, expected.oldestUnconfirmed);
}

TEST(EventBook, SelectsWhatAPlainWalkWouldSelect) {
    constexpr const char* targets[] = {"A", "B", ""};
    std::mt19937 random(1);
    const auto below = [&](int end) {
        return std::uniform_int_distribution<int>(0, end - 1)(random);
    };
    PlainList list;
    EventBook book(list);
    for (int step = 0; step < 5000; ++step) {
        Alarm some = alarm(below(40), targets[below(3)], 1 + below(20));
        some.set_severity(static_cast<Severity>(below(5)));
        some.set_time_cleared(Timestamp(below(3) ? 0 : 1));
        some.set_confirmation_state(static_cast<AlarmConfirmationState>(1 + below(2)));
        const Message news = message(targets[below(3)], 1 + below(20), below(2));
        const int kind = below(10);
        if (kind < 3)
            book.raise(some);
        else if (kind < 5)
            book.add(news);
        else if (kind < 7)
            kind == 5 ? book.update(some) : book.end(some);
        else if (kind < 9)
            kind == 7 ? drop(book, some) : drop(book, news);
        else
            handOver(book, random, list, targets[below(2)]);

        EventFilter filter;
        filter.target = targets[below(3)];
        const TargetCounts counts = book.countsByTarget()[*filter.target];
        ASSERT_EQ(counts.alarms + counts.messages, list.select(filter).size()) << step;
        filter.state = EventState::active;
        ASSERT_EQ(counts.active, list.select(filter).size()) << step;
        filter.state = EventState::unconfirmed;
        ASSERT_EQ(counts.unconfirmed, list.select(filter).size()) << step;
        expectAttention(book, list, below(2) ? filter.target : std::nullopt);

        if (below(2))
            filter.target.reset();
        if (below(2))
            filter.kind = below(2) ? EventKind::alarm : EventKind::message;
        filter.state.reset();
        if (below(2))
            filter.state = static_cast<EventState>(below(3));
        filter.severity = static_cast<std::uint32_t>(below(2) * below(5));
        filter.order = static_cast<EventOrder>(below(4));
        filter.reversed = below(2) != 0;
        if (below(2))
            filter.from = Timestamp((1 + below(10)) * 1'000'000'000LL);
        if (below(2))
            filter.to = Timestamp((8 + below(13)) * 1'000'000'000LL);
        const auto offset = static_cast<std::size_t>(below(8));
        const auto limit = static_cast<std::size_t>(below(20));
        std::vector<EventRecordPtr> expected = list.select(filter);
        const EventPage page = book.select(filter, offset, limit);
        ASSERT_EQ(page.total, expected.size()) << step;
        const auto left = expected.size() - std::min(offset, expected.size());
        expected.erase(expected.begin(), expected.end() - static_cast<std::ptrdiff_t>(left));
        expected.resize(std::min(limit, expected.size()));
        ASSERT_EQ(page.events, expected) << step;
    }
}

}  // namespace

}  // namespace hmi
