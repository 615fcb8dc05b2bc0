#include <algorithm>

#include <gmock/gmock.h>

#include "targetsystem/proxy/CAtlException.h"
#include "tests/events/TargetWorld.h"

namespace {

using namespace bridge_test;
using namespace testing;
using namespace ZrEventLoggerFnxProxyLib;
using ZrHmiEventLogger::ImportResultPtr;
using Lines = std::vector<std::string>;

struct LoggedEventImport : Test, TargetWorld {
    LoggedEventImport() : TargetWorld(100) {}
};

/// With room for three events.
struct CrowdedImport : Test, TargetWorld {
    CrowdedImport() : TargetWorld(3) {}
};

TEST_F(CrowdedImport, TakesOverTheLogAndTheActiveAlarms) {
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

TEST_F(CrowdedImport, ReplaysWhatItDoesNotKnow) {
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

TEST_F(CrowdedImport, ShowsTheFinalStateOfWhatChangedMeanwhile) {
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

/// As the same object.
TEST_F(LoggedEventImport, AnAlarmThatEndsAndIsRaisedAgainStandsThereAlive) {
    struct Case {
        bool isListedBefore;
        bool isToldLate;  ///< that it was raised again
        int again;        ///< when
        Lines expected;
    };
    const Case cases[] = {
        {false, false, 4, {"4s alarm 1", "9s alarm 2"}},
        {true, false, 1, {"1s alarm 1", "9s alarm 2"}},
        {true, false, 4, {"1s alarm 1 cleared now", "4s alarm 3", "9s alarm 2"}},
        {true, true, 1, {"1s alarm 1", "9s alarm 2"}},
        {true, true, 4, {"1s alarm 1 cleared now", "4s alarm 3", "9s alarm 2"}},
    };
    for (const Case& tested : cases) {
        TargetWorld world(100);
        FakeEvent& alarm = world.active(1, 1);
        FakeEvent& next = world.active(9, 2);  // when it is read, the first has been
        bool done = false;
        const auto endAndRaise = [&] {
            if (std::exchange(done, true))
                return;
            world.cleared(alarm, VARIANT_FALSE);
            world.confirmed(alarm, VARIANT_TRUE);
            alarm.data.raised = at(tested.again);
            if (!tested.isToldLate)
                world.raised(alarm);
        };
        if (!tested.isListedBefore)
            world.logger.betweenTheLists = endAndRaise;
        else
            world.border.onCall = [&] {
                if (next.asked != 0)
                    endAndRaise();
            };
        world.import();
        if (tested.isToldLate)
            world.raised(alarm);
        EXPECT_EQ(world.stored(), tested.expected);
    }

    FakeEvent& alarm = active(1, 1);
    import();
    cleared(alarm, VARIANT_TRUE);
    raised(alarm);
    EXPECT_THAT(stored(), ElementsAre("1s alarm 1")) << "all of it is told late";
    alarm.data.cleared = at(1);
    cleared(alarm, VARIANT_TRUE);
    alarm.data.cleared = 0;
    raised(alarm);
    EXPECT_THAT(stored(), ElementsAre("1s alarm 1 cleared 1s", "1s alarm 3"))
        << "after it, in one instant";

    TargetWorld unlisted(100);  // neither as it was nor as it is
    unlisted.logger.afterTheLists = [&] {
        FakeEvent& object = unlisted.source(1, 1);
        unlisted.raised(object);
        unlisted.cleared(object, VARIANT_TRUE);
        object.data.raised = at(4);
        unlisted.raised(object);
        unlisted.confirmed(object, VARIANT_FALSE);
    };
    unlisted.import();
    EXPECT_THAT(unlisted.stored(), ElementsAre("4s alarm 1"));

    TargetWorld late(100);
    late.loggedAlarm(1, 1, true);  // its end is told after the import alone
    late.import();
    late.cleared(late.source(1, 1), VARIANT_TRUE);
    late.raised(late.source(4, 1));
    EXPECT_THAT(late.stored(), ElementsAre("1s alarm 1 cleared now", "4s alarm 2"));
}

/// Alarms of one time and place, which their logger does not number.
TEST_F(LoggedEventImport, OneThatHasEndedStandsBesideItsLikeThatIsActive) {
    const auto logged = [&](std::uint64_t cleared) -> FakeEvent& {
        FakeEvent& alarm = loggedAlarm(1, 0);
        alarm.data.instanceId.reset();
        alarm.data.cleared = cleared;
        return alarm;
    };
    const auto listed = [&](std::uint64_t cleared) {
        FakeEvent& alarm = active(1, 0);
        alarm.data.instanceId.reset();
        alarm.data.cleared = cleared;
    };
    FakeEvent& ended = logged(at(2));
    logged(at(3));  // the one that still waits for its confirmation
    logged(0);      // one of the two that the log shows without their end
    listed(at(3));
    listed(0);
    import();
    EXPECT_THAT(stored(), ElementsAre("1s alarm 1 cleared 2s", "1s alarm 4 cleared 3s",
                                      "1s alarm 5"));
    raised(ended);
    EXPECT_THAT(host.take(), IsEmpty()) << "known to have ended";
}

/// Of one class and source, which their logger does not number.
TEST_F(LoggedEventImport, OneThatEndsAfterItsLikeWasRaisedIsNotLost) {
    loggedAlarm(1, 0, true).data.instanceId.reset();
    logger.betweenTheLists = [&] {
        FakeEvent& ended = source(1);
        raised(*logger.active.emplace_back(&source(4)));
        ended.data.cleared = at(5);
        cleared(ended, VARIANT_TRUE);
    };
    import();
    EXPECT_THAT(stored(), ElementsAre(AllOf(StartsWith("1s alarm"), EndsWith("cleared 5s")),
                                      StartsWith("4s alarm")));
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

TEST_F(LoggedEventImport, HoldsAgainstLateNotifications) {
    FakeEvent& current = active(1, 3);
    loggedAlarm(1, 1).data.cleared = at(2);
    loggedMessage(3);
    loggedAlarm(4, 2, true);  // ended before the list of active alarms was read
    FakeEvent& finished = source(1, 1);
    FakeEvent& unsettled = source(4, 2);
    FakeEvent& repeated = source(3);
    import();
    EXPECT_THAT(stored(),
                ElementsAre("1s alarm 1 cleared 2s", "1s alarm 3", "3s message", "4s invalid 4"));

    sent(repeated);
    for (int time = 0; time < 2; ++time) {
        raised(finished);
        cleared(finished, VARIANT_TRUE);
        confirmed(finished, VARIANT_TRUE);
        raised(current);
    }
    EXPECT_THAT(host.take(), IsEmpty());
    current.data.severity = 4;
    raised(current);
    unsettled.data.cleared = at(5);
    raised(unsettled);
    EXPECT_THAT(stored(), Contains("4s alarm 4 cleared 5s"));
    confirmed(unsettled, VARIANT_TRUE);
    sent(repeated);
    EXPECT_THAT(host.take(),
                ElementsAre("ACTIVE_ALARM_RAISED_AGAIN Filler 3 1s", "raise 3",
                            "ACTIVE_ALARM_RAISED_AGAIN Filler 4 4s", "raise 4",
                            "KNOWN_ALARM_CONFIRMED Filler true 4 4s -", "remove 4", "send 3s"));

    // All of it ends with the time-out, and with the next import.
    TargetWorld impatient(10, 0);
    impatient.loggedMessage(3);
    impatient.active(1, 1);
    impatient.import();
    impatient.sent(*impatient.logger.logged[0]);
    impatient.raised(*impatient.logger.active[0]);
    EXPECT_THAT(impatient.host.take(), ElementsAre("send 3s", StartsWith("ACTIVE_ALARM"), _));
    TargetWorld patient(10, 9'223'372'036);
    patient.loggedMessage(3);
    patient.import();
    patient.sent(*patient.logger.logged[0]);
    EXPECT_THAT(patient.host.take(), IsEmpty());
}

TEST_F(LoggedEventImport, TellsEventsOfOneTimeApart) {
    void (*const differences[])(FakeEventData&) = {
        [](FakeEventData& data) { data.eventClass.Data1 = 1; },
        [](FakeEventData& data) { data.eventId = 9; },
        [](FakeEventData& data) { data.sourceId = 2; },
        [](FakeEventData& data) { data.sourceId.reset(); },
        [](FakeEventData& data) { data.sourceName = "Tank 2"; },
        [](FakeEventData& data) {
            data.sourceGuid = GUID{2, 0, 0, {}};
        },
        [](FakeEventData& data) {
            data.block = {2, 2};
        },
    };
    FakeEventData same;
    same.sourceId = 0;
    same.sourceName = "Tank 1";
    same.sourceGuid = GUID{1, 0, 0, {}};
    same.argumentCount = 1;
    same.layout = {1, 0, 1, 1, 1};
    same.block = {2, 1};
    TargetWorld world(100);
    world.loggedMessage(1).data = same;
    world.loggedMessage(1).data = same;
    FakeEvent& ended = *world.logger.logged[1];
    ended.data.type = LoggedEventType::alarm;
    ended.data.cleared = at(2);
    const bool isAlarm[] = {false, true};
    world.logger.afterTheLists = [&] {
        for (const auto differ : differences)
            for (const bool alarm : isAlarm) {
                FakeEvent& other = world.source(1);
                other.data = same;
                differ(other.data);
                if (!alarm)
                    world.sent(other);
                else if (other.data.block == same.block)  // it does not make another alarm
                    world.raised(other);
            }
    };
    world.import();
    EXPECT_EQ(world.stored().size(), 2 + 2 * std::size(differences) - 1);
}

/// The log shows the alarm under its first time.
TEST_F(LoggedEventImport, AnAlarmThatIsRaisedAgainMeanwhileStandsThereOnce) {
    for (const bool late : {false, true})
        for (const bool ends : {false, true}) {
            SCOPED_TRACE((late ? "late" : "in time") + std::string(ends ? ", ends" : ""));
            TargetWorld world(100);
            world.loggedAlarm(1, 1, true);
            world.loggedAlarm(1, 2, true);  // the end of another instance nobody tells
            world.loggedAlarm(2, 1, true).data.eventClass.Data1 = 1;  // nor that of another class
            FakeEvent& again = world.source(4, 1);
            again.data.eventId = 9;  // also as another event
            again.data.cleared = ends ? at(5) : 0;
            if (!ends)
                world.logger.active.push_back(&again);
            const auto tell = [&] {
                world.raised(again);
                if (ends)
                    world.cleared(again, VARIANT_TRUE);
            };
            if (!late)
                world.logger.betweenTheLists = tell;
            world.import();
            if (late)
                tell();
            EXPECT_THAT(
                world.stored(),
                ElementsAre(StartsWith("1s invalid"), StartsWith("2s invalid"),
                            AllOf(StartsWith("4s alarm"), EndsWith(ends ? "cleared 5s" : ""))));
            // The host never knew of its former state.
            EXPECT_THAT(world.host.take(), Not(Contains(StartsWith("forget"))));
        }
}

/// Every call fails once, and is the last of a target that ends in it once.
TEST_F(LoggedEventImport, OneThatFailsOrIsAbandonedChangesNothing) {
    loggedMessage(1);
    import();
    active(2, 1).data.sourceName = "Tank";
    loggedAlarm(3, 2).data.cleared = at(4);
    loggedAlarm(5, 3, true);
    FakeEvent& recorded = source(6, 4);
    logger.betweenTheLists = [&] { raised(recorded); };
    const Lines before = stored();
    bool exchanged = false;
    bool completed = false;
    int lastCall = 0;
    border.onCall = [&] { retired = retired || border.calls == lastCall; };
    const auto attempt = [&] {
        const int idsBefore = ids;
        try {
            import();
            completed = true;
        } catch (const ZrAtlCom::CAtlException&) {
        } catch (const ZrHmiEventLogger::Abandoned&) {
            EXPECT_EQ(border.calls, lastCall);
        }
        exchanged |= importer.exchangedStore();
        if (!exchanged) {
            EXPECT_EQ(ids, idsBefore);
            EXPECT_EQ(stored(), before);
            EXPECT_THAT(host.take(), IsEmpty());
        }
    };
    for (int good = 0; !completed; ++good) {
        lastCall = border.calls + good + 1;
        attempt();
        retired = completed = false;
        lastCall = 0;
        border.goodCalls = good;
        attempt();
    }
    EXPECT_TRUE(exchanged);

    border.goodCalls = 0;
    EXPECT_THROW(import(), ZrAtlCom::CAtlException);
    host.take();
    sent(*logger.logged[0]);
    EXPECT_THAT(host.take(), Contains("send 1s")) << "neither recorded nor taken for a late one";

    // More than are kept are given up, and made up for by the next.
    const LONG references = this->references();
    logger.afterTheLists = [&] {
        for (std::size_t count = 0; count < notifications.capacity + 5; ++count)
            sent(*logger.logged[0]);
        EXPECT_EQ(this->references(), references);
    };
    border.goodCalls = -1;
    EXPECT_THROW(import(), std::runtime_error);
    sent(*logger.logged[0]);
    EXPECT_THAT(host.take(), Contains("send 1s")) << "recorded no more";
    logger.afterTheLists = [] {};
    EXPECT_EQ(import()->overruns, 1U);
}

TEST_F(LoggedEventImport, LeavesOutWhatContradictsItself) {
    const auto broken = [](FakeEvent& event) {
        event.data.argumentCount = 1;
        event.data.layout = {1, 5, 1, 0, 1};
    };
    broken(loggedMessage(1));
    FakeEvent& ended = active(2, 1);
    broken(ended);
    FakeEvent& mended = active(2, 5);
    broken(mended);
    broken(loggedAlarm(2, 1, true));  // the same, and so nothing more
    broken(loggedAlarm(3, 2, true));  // ended between the lists
    FakeEvent& next = active(4, 3);
    FakeEvent& recorded = source(5, 4);
    broken(recorded);
    logger.afterTheLists = [&] {
        raised(recorded);
        raised(ended);
        cleared(ended, VARIANT_TRUE);
    };
    border.onCall = [&, again = false]() mutable {
        if (next.asked == 0 || std::exchange(again, true))
            return;
        mended.data = next.data;  // raised again when it has been read
        mended.data.instanceId = 5;
        mended.data.raised = at(6);
        raised(mended);
    };
    EXPECT_EQ(import()->rejected, 5U);
    EXPECT_THAT(stored(), ElementsAre("4s alarm 1", "6s alarm 2"));
    EXPECT_THAT(host.take(), AllOf(SizeIs(6), Contains("NEW_ALARM_RAISED Filler 2 6s")));
    raised(recorded);
    sent(recorded);
    EXPECT_THAT(host.take(), AllOf(SizeIs(2), Each(StartsWith("error Filler Event 1 of class {0000"
                                                              "ABCD-0001-0002-0304-"))));
    EXPECT_EQ(ids, 3);
}

}  // namespace
