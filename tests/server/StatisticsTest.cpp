#include <string>

#include <gmock/gmock.h>

#include "server/statistics/StatisticsReport.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::Event;
using ZrHmiSrv::Timestamp;

namespace hmi {

namespace {

constexpr std::int64_t minute = 60'000'000'000;
const Timestamp start(1'000'000 * minute);

Timestamp at(double minutes) {
    return Timestamp(start.nanoseconds() + static_cast<std::int64_t>(minutes * minute));
}

Alarm alarm(int id, const char* target, int eventId, double raised) {
    Alarm made;
    made.set_id(id);
    made.set_time_raised(at(raised));
    made.payload().insert("targetName", target);
    made.payload().insert("eventId", eventId);
    return made;
}

class StatisticsTest : public testing::Test {
protected:
    void raise(double minutes, const char* target = "A", int eventId = 1) {
        raises.add(EventRecord({alarm(++id, target, eventId, minutes), {}}, 1), at(minutes));
    }
    StatisticsReport report(double now, int length = 60) const {
        return {std::chrono::minutes(length), at(now), raises, events, targets};
    }
    static std::vector<std::size_t> series(const StatisticsPart& part) {
        std::vector<std::size_t> counts;
        for (const RaiseRates::Rate& rate : part.rates.series())
            counts.push_back(rate.alarms);
        return counts;
    }

    int id = 0;
    RaiseBook raises{60, start};
    ChangeFeed feed;
    EventBook events{feed};
    TargetBook targets;
};

TEST_F(StatisticsTest, CountTenMinutesAtATimeAndFindThePeakBetweenThem) {
    for (const double minutes : {0.5, 9.0, 9.5, 10.5, 11.0, 59.0})
        raise(minutes);
    raise(9.2, "B");  // the clock was set back
    const StatisticsReport hour = report(60);
    EXPECT_THAT(series(hour.all), ElementsAre(4, 2, 0, 0, 0, 1));
    EXPECT_THAT(series(hour.targets.at("B")), ElementsAre(1, 0, 0, 0, 0, 0));
    EXPECT_EQ(hour.all.rates.peak().alarms, 5U) << "from 9 to 11, and not 10.5 after 0.5";
    EXPECT_EQ(hour.all.rates.peak().at, at(9));
    EXPECT_THAT(series(report(60, 15).all), ElementsAre(0, 1)) << "the rest is older";
    EXPECT_THAT(series(report(59, 1).all), ElementsAre(0)) << "the end is not part of it";
}

TEST_F(StatisticsTest, FloodsBeginWithTenInTenMinutesAndEndBelowFive) {
    for (int i = 0; i < 9; ++i)
        raise(0.1 * i);
    EXPECT_FALSE(report(1).all.flood);
    raise(10.05, "B");
    EXPECT_FALSE(report(10.1).all.flood) << "the first is older than ten minutes";
    raise(10.15);
    EXPECT_FALSE(report(10.1).all.flood);
    for (int i = 0; i < 8; ++i)
        raise(10.2 + 0.1 * i);
    const StatisticsReport now = report(11);
    EXPECT_TRUE(now.all.flood);
    EXPECT_FALSE(now.targets.at("B").flood);
    EXPECT_TRUE(report(20.45).all.flood) << "five are left";
    EXPECT_FALSE(report(20.55).all.flood) << "four are left";
    raise(20.6);
    EXPECT_FALSE(report(20.6).all.flood) << "it is over";
}

TEST_F(StatisticsTest, NameWhatComesOftenAndForgetTheOldest) {
    for (int kind = 1; kind <= 12; ++kind) {
        for (int i = 0; i < (kind == 7 ? 9 : 1); ++i)
            raise(kind + i, "A", kind);
    }
    for (const double minutes : {30.0, 30.5, 30.9, 31.8})
        raise(minutes, "A", 20);
    const RaiseRates& rates = report(60).all.rates;
    ASSERT_THAT(rates.frequent(), SizeIs(10));
    EXPECT_EQ(rates.frequent()[0].origin->eventId, 7U);
    EXPECT_EQ(rates.frequent()[0].count, 9U);
    ASSERT_THAT(rates.chattering(), SizeIs(1));
    EXPECT_EQ(rates.chattering()[0].origin->eventId, 20U);
    EXPECT_EQ(rates.chattering()[0].perMinute, 3U);
    EXPECT_EQ(rates.chattering()[0].newest, id);

    for (int i = 0; i < 60; ++i)
        raise(40, "A", 30);
    const StatisticsReport later = report(60);
    EXPECT_THAT(later.all.rates.frequent(), SizeIs(1)) << "bounded";
    EXPECT_EQ(later.since, at(31.8));
}

TEST_F(StatisticsTest, LeaveOutWhatAnImportBringsAndTellWhatStands) {
    ChangeFeed told;
    told.add("statistics", raises);
    EventBook book(told);
    const double now =
        static_cast<double>(Timestamp::now().nanoseconds() - start.nanoseconds()) / minute;
    Alarm old = alarm(1, "A", 1, now - 1441);
    old.set_confirmation_state(AlarmConfirmationState::pending);
    const Event brought[] = {old, alarm(2, "A", 1, now - 1438), alarm(3, "A", 1, now)};
    book.replaceTarget("A", brought);
    book.raise(alarm(4, "A", 1, now));
    book.raise(alarm(4, "A", 1, now + 1));
    const StatisticsReport report(std::chrono::minutes(60), at(now + 1), raises, book, targets);
    EXPECT_EQ(report.all.rates.peak().alarms, 2U);
    ASSERT_THAT(report.targets.at("A").standing, SizeIs(1));
    EXPECT_EQ(report.all.standing[0]->id.number, 1);
    EXPECT_EQ(report.all.attention.active[0], 4U);
    EXPECT_EQ(report.targets.at("A").attention.oldestUnconfirmed, old.time_raised());
}

}  // namespace

}  // namespace hmi
