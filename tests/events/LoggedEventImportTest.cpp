#include <gmock/gmock.h>

#include "tests/events/TargetWorld.h"

namespace {

using namespace bridge_test;
using namespace testing;
using namespace ZrEventLoggerFnxProxyLib;
using ZrHmiEventLogger::ImportResultPtr;
using Lines = std::vector<std::string>;

/// With room for three events.
struct LoggedEventImport : Test, TargetWorld {
    LoggedEventImport() : TargetWorld(3) {}
};

TEST_F(LoggedEventImport, TakesOverTheLogAndTheActiveAlarms) {
    loggedMessage(1);  // more than the limit: not asked for
    loggedMessage(2).data.type = static_cast<LoggedEventType>(2);
    loggedAlarm(3, 1, true);
    loggedAlarm(4, 2).data.cleared = at(5);
    active(3, 1);
    ImportResultPtr result = import();
    EXPECT_THAT(stored(), ElementsAre("3s alarm 3", "4s alarm 2 cleared 5s"))
        << "the event of another kind has drawn an id, the one that is still active has not";
    EXPECT_EQ(result->number, 1U);
    EXPECT_EQ(result->loggedEvents, 3U);
    EXPECT_EQ(result->activeAlarms, 1U);
    EXPECT_THAT(host.take(), IsEmpty());
    result.reset();
    EXPECT_EQ(references(), 1);

    // Live alarms beyond the limit stay and push out what is older. One that is logged as not
    // active but listed all the same stands in the list alone.
    active(4, 2);
    active(6, 3);
    active(7, 4);
    loggedAlarm(8, 5, false);
    loggedMessage(5);
    host.onCall = [&](const std::string&) { EXPECT_EQ(stored().size(), 5U) << "swapped already"; };
    EXPECT_EQ(import()->number, 2U);
    EXPECT_THAT(host.take(), ElementsAre("FORGET_EVENT Filler 5s", "forget 5s"));
    EXPECT_THAT(stored(), ElementsAre("3s alarm 3", "4s alarm 7", "6s alarm 8", "7s alarm 9",
                                      "8s invalid 5"));
    EXPECT_EQ(store.statistics().activeAlarmsCount, 4U);
}

TEST_F(LoggedEventImport, KeepsTheIdsOfAlarmsThatItKnows) {
    FakeEvent& same = source(1);
    FakeEvent& other = source(1);
    FakeEvent& returning = source(2, 7);
    raised(same);
    raised(returning);
    ids = 10;
    // One of the same time comes first, but the object itself has the better claim.
    logger.active = {&other, &same};
    active(2, 8);
    active(2, 7);
    EXPECT_EQ(import()->keptIds, 2U);
    EXPECT_THAT(stored(), ElementsAre("1s alarm 10", "1s alarm 1", "2s alarm 11", "2s alarm 2"));
    EXPECT_EQ(returning.references, 0) << "another object stands for it now";

    // None of three that share a key is a known object: each id is given once.
    same.data.raised = other.data.raised = at(9);
    logger.active = {&source(1), &source(1), &source(1)};
    EXPECT_EQ(import()->keptIds, 2U);
    EXPECT_THAT(stored(), ElementsAre("1s alarm 10", "1s alarm 1", "1s alarm 12"));
}

TEST_F(LoggedEventImport, AConfirmationMissesAnObjectThatIsReplacedMeanwhile) {
    active(1, 1).onConfirm = [] { return ADD_FAILURE() << "the former object", S_OK; };
    import();
    host.onCall = [&](const std::string& line) {
        if (line.starts_with("CALL_CONFIRM")) {
            logger.active = {&source(1, 1)};
            import();
        }
    };
    EXPECT_EQ(confirmByOperator(1), E_FAIL);
    host.onCall = [](const std::string&) {};
    EXPECT_EQ(confirmByOperator(1), S_OK) << "the new one, under the same id";
}

TEST_F(LoggedEventImport, ReplaysWhatItDoesNotKnow) {
    FakeEvent& fleeting = source(4, 1);
    FakeEvent& lasting = source(5, 2);
    FakeEvent& known = source(1);
    FakeEvent& unknown = source(6);
    unknown.data.eventId = 9;
    loggedMessage(1);
    logger.betweenTheLists = [&] {
        cleared(fleeting, VARIANT_FALSE);
        confirmed(fleeting, VARIANT_TRUE);
        sent(known);
        raised(lasting);
        sent(unknown);
        sent(known);
        EXPECT_THAT(host.take(), IsEmpty());
    };
    EXPECT_EQ(import()->recorded, 6U);
    EXPECT_EQ(host.take(),
              (Lines{"NEW_ALARM_RAISED Filler 2 4s", "KNOWN_ALARM_CLEARED Filler false 2 4s now",
                     "KNOWN_ALARM_CONFIRMED Filler true 2 4s -", "NEW_ALARM_RAISED Filler 3 5s",
                     "FORGET_EVENT Filler 1s", "forget 1s", "FORGET_EVENT Filler 1s", "forget 1s"}))
        << "the second of two equal messages is one more, and too old";
    EXPECT_THAT(stored(), ElementsAre("4s alarm 2 cleared now", "5s alarm 3", "6s message"));
    EXPECT_EQ(references(), 1) << "the lasting one";
}

TEST_F(LoggedEventImport, ShowsTheFinalStateOfWhatChangedMeanwhile) {
    FakeEvent& ended = active(1, 1);
    FakeEvent& waiting = active(2, 2);
    FakeEvent& anew = active(3, 3);
    loggedAlarm(5, 5).data.cleared = at(6);
    FakeEvent& finished = source(5, 5);
    logger.afterTheLists = [&] {
        ended.data.cleared = at(7);
        cleared(ended, VARIANT_TRUE);
        confirmed(ended, VARIANT_FALSE);
        cleared(waiting, VARIANT_FALSE);  // without a time
        waiting.data.confirmed = at(8);
        confirmed(waiting, VARIANT_FALSE);
        anew.data.raised = at(9);
        raised(anew);
        raised(finished);
        cleared(finished, VARIANT_TRUE);
    };
    import();
    EXPECT_THAT(stored(), ElementsAre("2s alarm 3 cleared now confirmed 8s",
                                      "5s alarm 1 cleared 6s", "9s alarm 4"));
    EXPECT_THAT(host.take(), ElementsAre("FORGET_EVENT Filler 1s", "forget 2"));

    cleared(anew, VARIANT_TRUE);
    EXPECT_THAT(host.take(), Contains("remove 4")) << "known by its new time";
}

TEST_F(LoggedEventImport, ADatabaseChangeEndsTheReplay) {
    loggedAlarm(1, 1, true);
    FakeEvent& before = source(2);
    FakeEvent& behind = source(3);
    logger.betweenTheLists = [&] {
        sent(before);
        deliver({Kind::databaseChanged, {}, {}, {}, databaseChangeDeleted});
        sent(behind);
    };
    EXPECT_EQ(import()->databaseChange, databaseChangeDeleted);
    EXPECT_THAT(stored(), ElementsAre("1s invalid 1", "2s message"));
    EXPECT_EQ(references(), 0);
    sent(behind);
    EXPECT_THAT(host.take(), ElementsAre("send 3s")) << "records no more";
    logger.betweenTheLists = [] {};
    EXPECT_EQ(import()->recorded, 0U);
}

TEST_F(LoggedEventImport, HoldsAgainstLateNotificationsOnce) {
    loggedAlarm(1, 1).data.cleared = at(2);
    loggedMessage(3);
    loggedAlarm(4, 2, true);  // ended before the list of active alarms was read
    FakeEvent& finished = source(1, 1);
    FakeEvent& unsettled = source(4, 2);
    FakeEvent& repeated = source(3);
    import();
    EXPECT_THAT(stored(), ElementsAre("1s alarm 1 cleared 2s", "3s message", "4s invalid 3"));

    sent(repeated);
    raised(finished);
    cleared(finished, VARIANT_TRUE);
    raised(unsettled);
    EXPECT_THAT(host.take(), IsEmpty());
    unsettled.data.cleared = at(5);
    cleared(unsettled, VARIANT_FALSE);
    unsettled.data.confirmed = at(6);
    confirmed(unsettled, VARIANT_TRUE);
    EXPECT_THAT(host.take(), ElementsAre("KNOWN_ALARM_CLEARED Filler false 3 4s 5s", "update 3",
                                         "KNOWN_ALARM_CONFIRMED Filler true 3 4s 6s", "remove 3"));
    EXPECT_THAT(stored(), ElementsAre("1s alarm 1 cleared 2s", "3s message",
                                      "4s alarm 3 cleared 5s confirmed 6s"));

    cleared(finished, VARIANT_TRUE);
    raised(finished);
    sent(repeated);
    EXPECT_THAT(host.take(), ElementsAre("UNKNOWN_ALARM_CLEARED Filler true 1s -",
                                         "NEW_ALARM_RAISED Filler 4 1s", "raise 4",
                                         "FORGET_EVENT Filler 1s", "forget 1", "send 3s"))
        << "each is held back once";
}

/// The log shows the alarm under its first time, the active list does not show it any more.
TEST_F(LoggedEventImport, AnAlarmThatIsRaisedAgainAndEndsMeanwhileStandsThereOnce) {
    for (const bool late : {false, true}) {
        SCOPED_TRACE(late);
        logger.logged.clear();
        loggedAlarm(1, 1, true);
        loggedAlarm(1, 2, true);  // the end of another instance nobody tells
        loggedAlarm(2, 1, true).data.eventClass.Data1 = 1;  // nor that of another class
        FakeEvent& again = source(4, 1);
        again.data.eventId = 9;  // also as another event
        again.data.cleared = at(5);
        const auto tell = [&] {
            raised(again);
            cleared(again, VARIANT_TRUE);
        };
        logger.betweenTheLists = late ? std::function<void()>([] {}) : tell;
        import();
        if (late)
            tell();
        EXPECT_THAT(stored(), ElementsAre(StartsWith("1s invalid"), StartsWith("2s invalid"),
                                          AllOf(StartsWith("4s alarm"), HasSubstr("cleared 5s"))));
    }
    EXPECT_THAT(host.take(), Contains(StartsWith("ACTIVE_ALARM_RAISED_AGAIN")));
}

TEST_F(LoggedEventImport, AnAlarmThatIsRaisedAgainAtItsTimeIsTakenSeriously) {
    FakeEvent& alarm = active(1, 1);
    import();
    raised(alarm);
    EXPECT_THAT(host.take(), IsEmpty()) << "the raise that the import has seen already";
    raised(alarm);
    EXPECT_THAT(host.take(), ElementsAre("ACTIVE_ALARM_RAISED_AGAIN Filler 1 1s", "raise 1"));
    import();
    alarm.data.severity = 4;
    raised(alarm);
    EXPECT_THAT(host.take(), ElementsAre("ACTIVE_ALARM_RAISED_AGAIN Filler 1 1s", "raise 1"));
}

}  // namespace
