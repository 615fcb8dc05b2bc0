/// The history behind an event book, with the disk and other runs of the server played.
#ifndef _WIN32  // there is none

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include "server/StartError.h"
#include "server/events/EventBook.h"
#include "server/events/LogBook.h"
#include "server/history/History.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::Event;
using ZrHmiSrv::Message;
using ZrHmiSrv::Severity;
using ZrHmiSrv::Timestamp;

namespace hmi {

namespace {

constexpr std::int64_t oneSecond = 1'000'000'000;

/// So many seconds ago, in whole ones.
Timestamp ago(int seconds) {
    static const std::int64_t now = Timestamp::now().nanoseconds() / oneSecond * oneSecond;
    return Timestamp(now - seconds * oneSecond);
}

template <class Made>
Made made(const std::string& target, Timestamp raised, const std::string& argument) {
    Made event;
    event.set_time_raised(raised);
    event.set_severity(Severity::warning);
    event.payload().insert("targetName", target.c_str());
    event.payload().insert("eventClass", "Machine");
    event.payload().insert("types", argument.c_str());
    return event;
}

Message message(int secondsAgo, const std::string& argument = "") {
    return made<Message>("A", ago(secondsAgo), argument);
}

Alarm alarm(int id, int secondsAgo, const std::string& argument = "") {
    Alarm event = made<Alarm>("A", ago(secondsAgo), argument);
    event.set_id(id);
    event.set_confirmation_state(AlarmConfirmationState::pending);
    return event;
}

Alarm confirmed(Alarm event, int secondsAgo) {
    event.set_confirmation_state(AlarmConfirmationState::confirmed);
    event.set_time_confirmed(ago(secondsAgo));
    return event;
}

Alarm cleared(Alarm event, int secondsAgo) {
    event.set_time_cleared(ago(secondsAgo));
    return event;
}

template <class... Payloads>
std::vector<Event> log(const Payloads&... payloads) {
    std::vector<Event> events;
    const auto add = [&](auto payload) {
        Event event;
        event.set_time_received(payload.time_raised());
        event.set_payload(ZrHmiSrv::Value(payload));
        events.push_back(event);
    };
    (add(payloads), ...);
    return events;
}

/// One run of a server on the test's file.
struct Session {
    explicit Session(HistorySettings settings)
        : history(openHistory(
              settings,
              {[](std::span<const EventRecordPtr> events, std::chrono::milliseconds) {
                   const auto text = std::make_shared<EventTexts>();
                   text->text = ZrHmiSrv::Text("Level 15.5 of Behälter low");
                   return std::vector<TextsPtr>(events.size(), text);
               },
               [this] { return book.select({}, 0, 1'000'000).events; },
               [](const HistoryStatus&) {}})) {
        feed.add("history", *history);
        history->start();
    }

    /// Waits until all is written that was told.
    void settle() {
        while (history->status().queued > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    HistoryPage read(HistoryQuery query = {}) { return history->read(query); }

    ChangeFeed feed;
    EventBook book{feed};
    std::unique_ptr<IHistory> history;
};

class HistoryTest : public testing::Test {
protected:
    HistoryTest() {
        directory = std::filesystem::temp_directory_path() /
                    ("history_test_" + std::to_string(::getpid()) + "_" +
                     testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(directory);
        settings.file = directory / "history.db";
    }
    ~HistoryTest() override { std::filesystem::remove_all(directory); }

    /// What one run keeps; then all that the file holds, newest first.
    template <class Act>
    std::vector<std::string> changesAfter(Act act) {
        {
            Session run(settings);
            act(run.book);
            run.history->stop();
        }
        return changes(Session(settings));
    }

    static std::vector<std::string> changes(const Session& run, HistoryQuery query = {}) {
        query.limit = 1000;
        std::vector<std::string> names;
        for (const HistoryEntry& entry : run.history->read(query).entries)
            names.push_back(std::string(nameOf(entry.change)) + " " +
                            std::to_string((ago(0).nanoseconds() - entry.at.nanoseconds()) /
                                           oneSecond));
        return names;
    }

    std::filesystem::path directory;
    HistorySettings settings;
};

TEST_F(HistoryTest, EachChangeOnceHoweverOftenItIsHeard) {
    const Alarm low = alarm(1, 100);
    const auto lived = changesAfter([&](EventBook& book) {
        book.raise(low);
        book.update(confirmed(low, 90));
        book.add(message(80));
        book.add(message(80));
    });
    const std::vector<std::string> once{"message 80", "message 80", "confirmed 90", "raised 100"};
    EXPECT_EQ(lived, once);

    const auto importedAgain = changesAfter([&](EventBook& book) {
        for (int connected = 0; connected < 3; ++connected) {
            book.replaceTarget("A", log(message(80), confirmed(alarm(7, 100), 90), message(80)));
            book.replaceTarget("A", log(message(80)), false);
        }
    });
    EXPECT_EQ(importedAgain, once) << "another run has other ids";

    const auto ended = changesAfter([&](EventBook& book) {
        book.replaceTarget("A", log(message(80), message(80), message(80),
                                    cleared(confirmed(alarm(3, 100), 90), 50), alarm(4, 40)));
        book.end(cleared(confirmed(alarm(4, 40), 30), 20));
    });
    EXPECT_THAT(ended, ElementsAre("removed 20", "cleared 20", "confirmed 30", "raised 40",
                                   "removed 50", "cleared 50", "message 80", "message 80",
                                   "message 80", "confirmed 90", "raised 100"));
}

TEST_F(HistoryTest, AnAlarmThatTheLoggerDoesNotKnowAnyMoreHasEndedUnseen) {
    const auto before = changesAfter([](EventBook& book) {
        book.raise(alarm(1, 100, "gone"));
        book.raise(alarm(2, 90, "there"));
        book.raise(alarm(2, 80, "there"));
        book.raise(cleared(alarm(3, 70, "gone"), 60));
    });
    EXPECT_THAT(before, ElementsAre("cleared 60", "raised 70", "raised_again 80", "raised 90",
                                    "raised 100"));
    Session run(settings);
    const auto import = [&](const std::vector<Event>& all) {
        ZrHmiSrv::Message entry;
        entry.set_name("LOGGED_EVENTS_IMPORTED");
        entry.parameters().insert("0", "A");
        LogBook(run.feed).add(entry);
        run.book.replaceTarget("A", all);
        run.settle();
    };
    run.book.replaceTarget("A", {}, false);
    run.settle();
    EXPECT_EQ(changes(run), before) << "it is lost, and nobody can say";
    import(log(alarm(9, 80, "there")));
    const std::vector<std::string> after{"removed 60",   "cleared 60", "raised 70", "raised_again 80",
                                         "raised 90", "removed 100", "raised 100"};
    EXPECT_EQ(changes(run), after);
    const auto ends = run.read({.change = HistoryChange::removed, .text = "level"}).entries;
    ASSERT_EQ(ends.size(), 2U);
    EXPECT_THAT(ends[0].event, testing::HasSubstr("\"alarmState\":0"));
    EXPECT_THAT(ends[1].event, testing::HasSubstr("\"timeCleared\":null"));
    EXPECT_THAT(ends[1].event, testing::HasSubstr("\"alarmState\":4"));
    EXPECT_EQ(ends[1].severity, run.read({.limit = 1}).entries.at(0).severity);
    import(log(alarm(9, 80, "there")));
    EXPECT_EQ(changes(run), after);
}

TEST_F(HistoryTest, TwinsAreToldApartByTheirArguments) {
    const auto found = changesAfter([](EventBook& book) {
        book.raise(alarm(1, 100, "left"));
        book.raise(alarm(2, 100, "right"));
        book.raise(alarm(3, 100, "right"));
    });
    EXPECT_EQ(found.size(), 3U);
    Session run(settings);
    run.book.replaceTarget("A", log(alarm(9, 100, "right"), alarm(8, 100, "right"),
                                    cleared(confirmed(alarm(7, 100, "left"), 10), 10)));
    run.settle();
    const HistoryPage all = run.read();
    ASSERT_EQ(all.entries.size(), 6U);
    HistoryQuery life;
    life.occurrence = all.entries.front().occurrence;
    EXPECT_THAT(changes(run, life), UnorderedElementsAre("raised 100", "confirmed 10",
                                                         "cleared 10", "removed 10"));
    for (const HistoryEntry& entry : run.read(life).entries)
        EXPECT_THAT(entry.event, testing::HasSubstr("left"));
    run.book.raise(alarm(9, 5, "right"));
    run.settle();
    EXPECT_EQ(changes(run).front(), "raised_again 5");
}

/// One page after the other gives the same as a walk of all.
TEST_F(HistoryTest, PagesAndFiltersAgreeWithAPlainWalk) {
    Session run(settings);
    for (int number = 0; number < 3000; ++number) {
        Message event = message(number % 3 == 0 ? 50 : number, std::to_string(number));
        event.payload()["targetName"] = "ABCDE"[number % 5] == 'E' ? "Rare" : "Usual";
        event.set_severity(static_cast<Severity>(number % 5));
        run.book.add(event);
    }
    run.settle();
    const auto walk = [&](HistoryQuery query, std::size_t limit) {
        std::vector<HistoryEntry> entries;
        query.limit = limit;
        for (bool more = true; more;) {
            HistoryPage page = run.read(query);
            std::move(page.entries.begin(), page.entries.end(), std::back_inserter(entries));
            more = page.next.has_value();
            query.after = page.next.value_or(0);
        }
        return entries;
    };
    const std::vector<HistoryEntry> all = walk({}, 1000);
    ASSERT_EQ(all.size(), 3000U);
    EXPECT_TRUE(std::is_sorted(all.begin(), all.end(),
                               [](const auto& a, const auto& b) { return b.at < a.at; }));
    const auto expectSame = [&](const HistoryQuery& query, auto matches) {
        std::vector<std::int64_t> expected, found;
        for (const HistoryEntry& entry : all) {
            if (matches(entry))
                expected.push_back(entry.sequence);
        }
        for (const HistoryEntry& entry : walk(query, 7))
            found.push_back(entry.sequence);
        EXPECT_FALSE(found.empty());
        EXPECT_EQ(found, expected);
    };
    const auto isOf = [](const auto& entry) { return entry.target == "Rare" && entry.severity > 2; };
    HistoryQuery rare{.target = "Rare", .severity = 3};
    expectSame(rare, isOf);
    rare.text = "level";
    expectSame(rare, isOf);
    rare.text = "15.5-of-Beh* lev*";
    rare.kind = HistoryKind::message;
    expectSame(rare, isOf);
    rare.from = ago(900);
    rare.to = ago(50);
    expectSame(rare, [&](const auto& entry) {
        return isOf(entry) && ago(900) <= entry.at && entry.at <= ago(50);
    });
    const std::vector<HistoryQuery> nothing{{.target = "None"},
                                            {.change = HistoryChange::raised},
                                            {.text = "unheard"},
                                            {.text = "\" OR * AND ("},
                                            {.station = "North"}};
    for (const HistoryQuery& query : nothing)
        EXPECT_THAT(run.read(query).entries, IsEmpty()) << query.text;
}

/// While the disk takes nothing the queue runs over: nobody waits, and it is told what is missing.
TEST_F(HistoryTest, ADiskThatIsFullCostsTheHistoryOnlyAndIsOneGap) {
    settings.queued = 50;
    Session run(settings);
    run.book.add(message(1000));
    run.settle();
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ::getrlimit(RLIMIT_FSIZE, &before);
    const rlimit full{4096, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &full);
    for (int number = 0; number < 400; ++number)
        run.book.add(message(500 - number));
    while (run.history->status().state != HistoryStatus::State::failing)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    for (int number = 400; number < 500; ++number)
        run.book.add(message(500 - number));
    ::setrlimit(RLIMIT_FSIZE, &before);
    const std::uint64_t lost = run.history->status().lost;
    EXPECT_GT(lost, 0U);
    const auto gaps = [&] { return run.read({.kind = HistoryKind::gap}).entries; };
    for (int patience = 0; patience < 1000 && gaps().empty(); ++patience)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_EQ(gaps().size(), 1U);
    EXPECT_THAT(gaps().front().event, testing::HasSubstr("\"lost\":" + std::to_string(lost)));
    EXPECT_EQ(run.history->status().state, HistoryStatus::State::good);
    std::map<std::int64_t, int> times;
    for (const HistoryEntry& entry : run.read({.kind = HistoryKind::message, .limit = 1000}).entries)
        ++times[entry.at.nanoseconds()];
    EXPECT_EQ(times.size(), 501U) << "what there still is was brought back";
    for (const auto& [time, count] : times)
        EXPECT_EQ(count, 1);
}

TEST_F(HistoryTest, TheOldestGoByAgeAndBySizeAndDoNotComeBack) {
    settings.days = 1;
    settings.bytes = 1 << 20;
    Session run(settings);
    run.book.replaceTarget("A", log(message(200'000), message(60)));
    run.settle();
    EXPECT_THAT(changes(run), ElementsAre("message 60"));
    for (int number = 0; number < 3000; ++number)
        run.book.add(message(50'000 - number, "many"));
    const auto isSmall = [&] {
        const HistoryStatus status = run.history->status();
        return status.queued == 0 && status.sequence > 3000 && status.bytes <= settings.bytes;
    };
    for (int patience = 0; patience < 2000 && !isSmall(); ++patience)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_TRUE(isSmall());
    const std::size_t kept = 3002 - run.history->status().removed;
    run.book.replaceTarget("A", log(message(200'000), message(60), message(49'999, "many")));
    run.settle();
    EXPECT_EQ(3002 - run.history->status().removed, kept);
    run.history->stop();
    Session next(settings);
    next.book.add(message(10));
    next.settle();
    EXPECT_EQ(next.read().entries.front().sequence, 3003) << "no number comes twice";
}

TEST_F(HistoryTest, ABrokenFileIsSetAsideAndANewOneBegun) {
    const auto keepsOne = [&](int secondsAgo) {
        Session run(settings);
        run.book.add(message(secondsAgo));
        run.settle();
        return changes(run);
    };
    std::ofstream(settings.file) << std::string(9000, 'x');
    EXPECT_THAT(keepsOne(30), ElementsAre("message 30"));
    EXPECT_THAT(keepsOne(20), ElementsAre("message 20", "message 30"));
    std::fstream(settings.file, std::ios::in | std::ios::out | std::ios::binary).seekp(4096)
        << std::string(200'000, 'x');
    EXPECT_THAT(keepsOne(10), ElementsAre("message 10"));
    const auto isAside = [](const auto& each) {
        return each.path().string().find(".db.broken-") != std::string::npos;
    };
    EXPECT_EQ(std::count_if(std::filesystem::directory_iterator(directory), {}, isAside), 2);
    settings.file = directory;
    EXPECT_THROW(Session run(settings), StartError) << "that is no place for a file";
}

}  // namespace

}  // namespace hmi

#endif
