#include <gmock/gmock.h>

#include "events/LoggedEventImport.h"
#include "target/proxy/CAtlException.h"
#include "tests/events/FakeLogger.h"
#include "tests/events/LifecycleWorld.h"

namespace {

using namespace bridge_test;
using namespace ZrEventLoggerFnxProxyLib;
using testing::ElementsAre;
using testing::IsEmpty;
using ZrAtlCom::ComPtr;
using ZrHmiEventLogger::ImportResultPtr;
using ZrHmiEventLogger::NotificationKind;
using Lines = std::vector<std::string>;

/// A target's pieces around one fake logger, whose events `logged` and `live` make.
struct ImportWorld {
    ImportResultPtr import() { return importer.run(logger); }

    FakeLoggedEvent& logged(int raised, ULONG instance, LoggedEventType type,
                            std::optional<bool> isActive = {}) {
        FakeEventData data;
        data.raised = at(raised);
        data.type = type;
        data.isActive = isActive;
        if (type == LoggedEventType::alarm)
            data.instanceId = instance;
        loggedEvents.push_back(std::make_unique<FakeLoggedEvent>(world.border, data));
        logger.logged.push_back(loggedEvents.back().get());
        return *loggedEvents.back();
    }
    FakeAlarm& alarm(int raised, std::optional<ULONG> instance) {
        FakeEventData data;
        data.raised = at(raised);
        data.instanceId = instance;
        alarms.push_back(std::make_unique<FakeAlarm>(world.border, data));
        return *alarms.back();
    }
    FakeAlarm& active(int raised, std::optional<ULONG> instance) {
        logger.active.push_back(&alarm(raised, instance));
        return *alarms.back();
    }
    FakeMessage& message(int raised) {
        FakeEventData data;
        data.raised = at(raised);
        messages.push_back(std::make_unique<FakeMessage>(world.border, data));
        return *messages.back();
    }

    void notify(NotificationKind kind, FakeAlarm& source, VARIANT_BOOL removed = VARIANT_FALSE) {
        deliver({kind, ComPtr<IZrAlarm>(&source), {}, removed, {}});
    }
    void raised(FakeAlarm& source) { notify(NotificationKind::alarmRaised, source); }
    void cleared(FakeAlarm& source, VARIANT_BOOL removed) {
        notify(NotificationKind::alarmCleared, source, removed);
    }
    void confirmed(FakeAlarm& source, VARIANT_BOOL removed) {
        notify(NotificationKind::alarmConfirmed, source, removed);
    }
    void sent(FakeMessage& source) {
        deliver(
            {NotificationKind::messageSent, {}, ComPtr<IZrMessage>(&source), VARIANT_FALSE, {}});
    }
    void databaseChanged() {
        deliver({NotificationKind::databaseChanged, {}, {}, VARIANT_FALSE, databaseChangeDeleted});
    }
    void deliver(ZrHmiEventLogger::RecordedCallback&& notification) {
        notifications.deliver(std::move(notification),
                              [this](const auto& live) { world.lifecycle.handle(live, false); });
    }
    LONG references() const {
        LONG sum = 0;
        for (const auto& source : alarms)
            sum += source->references;
        for (const auto& source : messages)
            sum += source->references;
        for (const auto& source : loggedEvents)
            sum += source->references;
        return sum;
    }

    // Outlive the store, which releases them.
    std::vector<std::unique_ptr<FakeLoggedEvent>> loggedEvents;
    std::vector<std::unique_ptr<FakeAlarm>> alarms;
    std::vector<std::unique_ptr<FakeMessage>> messages;
    LifecycleWorld world{3};
    FakeLogger logger{world.border};
    ZrHmiEventLogger::NotificationRecorder notifications;
    ZrHmiEventLogger::LoggedEventImport importer{world.context, world.store, notifications,
                                                 world.lifecycle};
};

struct LoggedEventImport : testing::Test, ImportWorld {};

constexpr auto loggedMessage = LoggedEventType::message;
constexpr auto loggedAlarm = LoggedEventType::alarm;

TEST_F(LoggedEventImport, TakesOverTheLogAndTheActiveAlarms) {
    logged(1, 0, loggedMessage);  // more than the limit: not asked for
    logged(2, 0, static_cast<LoggedEventType>(2));
    logged(3, 1, loggedAlarm, true);
    logged(4, 2, loggedAlarm).data.cleared = at(5);
    active(3, 1);
    const ImportResultPtr result = import();
    EXPECT_THAT(world.stored(), ElementsAre("3s alarm 3", "4s alarm 2 cleared 5s"))
        << "the event of another kind has drawn an id, the one that is still active has not";
    EXPECT_EQ(world.store.statistics().activeAlarmsCount, 1U);
    EXPECT_EQ(result->number, 1U);
    EXPECT_EQ(result->loggedEvents, 3U);
    EXPECT_EQ(result->activeAlarms, 1U);
    EXPECT_THAT(world.host.take(), IsEmpty());
    EXPECT_EQ(references(), 1);

    // Live alarms beyond the limit stay and push out what is older, which is told afterwards. One
    // that is logged as not active but listed all the same stands in the list alone.
    active(4, 2);
    active(6, 3);
    active(7, 4);
    logged(8, 5, loggedAlarm, false);
    logger.afterTheLists = [&] { EXPECT_THAT(world.host.take(), IsEmpty()); };
    EXPECT_EQ(import()->number, 2U);
    EXPECT_THAT(world.stored(), ElementsAre("3s alarm 3", "4s alarm 6", "6s alarm 7", "7s alarm 8",
                                            "8s invalid 5"));
    logged(9, 0, loggedMessage);
    logged(9, 0, loggedMessage);
    logged(9, 0, loggedMessage);
    import();
    EXPECT_EQ(world.store.statistics().cachedMessagesCount, 3U);
    EXPECT_EQ(world.store.statistics().activeAlarmsCount, 4U);
}

TEST_F(LoggedEventImport, ReportsEvictionsOnceTheStoreIsSwapped) {
    logged(1, 0, loggedMessage);
    logged(2, 0, loggedMessage);
    logged(3, 0, loggedMessage);
    active(4, 1);
    world.host.onCall = [&](const std::string&) {
        EXPECT_THAT(world.stored(), ElementsAre("2s message", "3s message", "4s alarm 4"));
    };
    import();
    EXPECT_THAT(world.host.take(), ElementsAre("FORGET_EVENT Filler 1s", "forget 1s"));
}

TEST_F(LoggedEventImport, KeepsTheIdsOfAlarmsThatItKnows) {
    FakeAlarm& same = alarm(1, {});
    FakeAlarm& other = alarm(1, {});
    FakeAlarm& returning = alarm(2, 7);
    world.raise(same);
    world.raise(returning);
    world.ids = 10;
    // One of the same time comes first, but the object itself has the better claim.
    logger.active = {&other, &same};
    active(2, 8);
    active(2, 7);
    EXPECT_EQ(import()->keptIds, 2U);
    EXPECT_THAT(world.stored(),
                ElementsAre("1s alarm 10", "1s alarm 1", "2s alarm 11", "2s alarm 2"));
    EXPECT_EQ(returning.references, 0) << "another object stands for it now";

    // Neither of two that share a key is the known object: the id is given once.
    same.data.raised = other.data.raised = at(9);
    logger.active = {&alarm(1, {}), &alarm(1, {})};
    EXPECT_EQ(import()->keptIds, 1U);
    EXPECT_THAT(world.stored(), ElementsAre("1s alarm 10", "1s alarm 12"));
}

TEST_F(LoggedEventImport, AConfirmationMissesAnObjectThatIsReplacedMeanwhile) {
    active(1, 1).onConfirm = [] { return ADD_FAILURE() << "the former object", S_OK; };
    import();
    world.host.onCall = [&](const std::string& line) {
        if (line.starts_with("CALL_CONFIRM")) {
            logger.active = {&alarm(1, 1)};
            import();
        }
    };
    EXPECT_EQ(world.confirmByOperator(1), E_FAIL);
    world.host.onCall = [](const std::string&) {};
    EXPECT_EQ(world.confirmByOperator(1), S_OK) << "the new one, under the same id";
}

TEST_F(LoggedEventImport, ReplaysWhatItDoesNotKnow) {
    FakeAlarm& fleeting = alarm(4, 1);
    FakeAlarm& lasting = alarm(5, 2);
    FakeMessage& known = message(1);
    FakeMessage& unknown = message(6);
    unknown.data.eventId = 9;
    logged(1, 0, loggedMessage);
    logger.betweenTheLists = [&] {
        cleared(fleeting, VARIANT_FALSE);
        confirmed(fleeting, VARIANT_TRUE);
        sent(known);
        raised(lasting);
        sent(unknown);
        sent(known);
        EXPECT_THAT(world.host.take(), IsEmpty());
    };
    EXPECT_EQ(import()->recorded, 6U);
    EXPECT_EQ(world.host.take(),
              (Lines{"NEW_ALARM_RAISED Filler 2 4s", "KNOWN_ALARM_CLEARED Filler false 2 4s now",
                     "KNOWN_ALARM_CONFIRMED Filler true 2 4s -", "NEW_ALARM_RAISED Filler 3 5s",
                     "FORGET_EVENT Filler 1s", "forget 1s", "FORGET_EVENT Filler 1s", "forget 1s"}))
        << "the second of two equal messages is one more, and too old";
    EXPECT_THAT(world.stored(), ElementsAre("4s alarm 2 cleared now", "5s alarm 3", "6s message"));
    EXPECT_EQ(references(), 1) << "the lasting one";
}

TEST_F(LoggedEventImport, ShowsTheFinalStateOfWhatChangedMeanwhile) {
    FakeAlarm& ended = active(1, 1);
    FakeAlarm& waiting = active(2, 2);
    FakeAlarm& anew = active(3, 3);
    logged(5, 5, loggedAlarm).data.cleared = at(6);
    FakeAlarm& finished = alarm(5, 5);
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
    EXPECT_THAT(world.stored(), ElementsAre("2s alarm 3 cleared now confirmed 8s",
                                            "5s alarm 1 cleared 6s", "9s alarm 4"));
    EXPECT_THAT(world.host.take(), ElementsAre("FORGET_EVENT Filler 1s", "forget 2"));

    cleared(anew, VARIANT_TRUE);
    EXPECT_THAT(world.host.take(), testing::Contains("remove 4")) << "known by its new time";
}

TEST_F(LoggedEventImport, ADatabaseChangeEndsTheReplay) {
    logged(1, 1, loggedAlarm, true);
    FakeMessage& before = message(2);
    FakeMessage& behind = message(3);
    logger.betweenTheLists = [&] {
        sent(before);
        databaseChanged();
        sent(behind);
    };
    const ImportResultPtr result = import();
    EXPECT_EQ(result->databaseChange, databaseChangeDeleted);
    EXPECT_THAT(world.stored(), ElementsAre("1s invalid 1", "2s message"));
    EXPECT_EQ(references(), 0);
    sent(behind);
    EXPECT_THAT(world.host.take(), ElementsAre("send 3s")) << "records no more";
    logger.betweenTheLists = [] {};
    EXPECT_EQ(import()->recorded, 0U);
}

TEST_F(LoggedEventImport, HoldsAgainstLateNotificationsOnce) {
    logged(1, 1, loggedAlarm).data.cleared = at(2);
    logged(3, 0, loggedMessage);
    logged(4, 2, loggedAlarm, true);  // ended before the list of active alarms was read
    FakeAlarm& finished = alarm(1, 1);
    FakeAlarm& unsettled = alarm(4, 2);
    FakeMessage& repeated = message(3);
    import();
    EXPECT_THAT(world.stored(), ElementsAre("1s alarm 1 cleared 2s", "3s message", "4s invalid 3"));
    EXPECT_EQ(world.store.statistics().cachedInvalidAlarmsCount, 1U);

    sent(repeated);
    raised(finished);
    cleared(finished, VARIANT_TRUE);
    raised(unsettled);
    EXPECT_THAT(world.host.take(), IsEmpty());
    unsettled.data.cleared = at(5);
    cleared(unsettled, VARIANT_FALSE);
    unsettled.data.confirmed = at(6);
    confirmed(unsettled, VARIANT_TRUE);
    EXPECT_THAT(world.host.take(),
                ElementsAre("KNOWN_ALARM_CLEARED Filler false 3 4s 5s", "update 3",
                            "KNOWN_ALARM_CONFIRMED Filler true 3 4s 6s", "remove 3"));
    EXPECT_THAT(world.stored(), ElementsAre("1s alarm 1 cleared 2s", "3s message",
                                            "4s alarm 3 cleared 5s confirmed 6s"));
    EXPECT_EQ(world.store.statistics().cachedInvalidAlarmsCount, 0U);

    cleared(finished, VARIANT_TRUE);
    raised(finished);
    sent(repeated);
    EXPECT_THAT(world.host.take(), ElementsAre("UNKNOWN_ALARM_CLEARED Filler true 1s -",
                                               "NEW_ALARM_RAISED Filler 4 1s", "raise 4",
                                               "FORGET_EVENT Filler 1s", "forget 1", "send 3s"))
        << "each is held back once";
}

/// The log shows the alarm under its first time, the active list does not show it any more.
TEST_F(LoggedEventImport, AnAlarmThatIsRaisedAgainAndEndsMeanwhileStandsThereOnce) {
    for (const bool late : {false, true}) {
        SCOPED_TRACE(late);
        logger.logged.clear();
        logged(1, 1, loggedAlarm, true);
        logged(1, 2, loggedAlarm, true);  // of another instance: its end nobody tells
        FakeAlarm& again = alarm(4, 1);
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
        EXPECT_THAT(world.stored(),
                    ElementsAre(testing::StartsWith("1s invalid"), testing::HasSubstr("4s alarm")));
        EXPECT_THAT(world.stored(), testing::Contains(testing::HasSubstr("cleared 5s")));
    }
    EXPECT_THAT(world.host.take(), testing::Contains(testing::StartsWith("ACTIVE_ALARM_RAISED_AGAIN")));
}

TEST_F(LoggedEventImport, AnAlarmThatIsRaisedAgainAtItsTimeIsTakenSeriously) {
    FakeAlarm& source = active(1, 1);
    import();
    raised(source);
    EXPECT_THAT(world.host.take(), IsEmpty()) << "the raise that the import has seen already";
    raised(source);
    EXPECT_THAT(world.host.take(), ElementsAre("ACTIVE_ALARM_RAISED_AGAIN Filler 1 1s", "raise 1"));
    import();
    source.data.severity = 4;
    raised(source);
    EXPECT_THAT(world.host.take(), ElementsAre("ACTIVE_ALARM_RAISED_AGAIN Filler 1 1s", "raise 1"));
    cleared(source, VARIANT_TRUE);
    cleared(source, VARIANT_TRUE);
    EXPECT_THAT(world.host.take(),
                ElementsAre("KNOWN_ALARM_CLEARED Filler true 1 1s now", "remove 1",
                            "UNKNOWN_ALARM_CLEARED Filler true 1s -"));
}

/// It is, in front of every call of an import.
TEST(LoggedEventImportRace, AnAlarmThatIsRaisedAgainMeanwhileIsKnownByItsNewTime) {
    int change = 0;
    for (bool changed = true; changed; ++change) {
        ImportWorld target;
        FakeAlarm& source = target.active(1, 1);
        changed = false;
        target.world.border.onCall = [&, call = 0]() mutable {
            if (call++ != change)
                return;
            changed = true;
            source.data.raised = at(2);
            target.raised(source);
        };
        target.import();
        target.world.border.onCall = [] {};
        target.cleared(source, VARIANT_TRUE);
        const std::string known = changed ? "KNOWN_ALARM_CLEARED Filler true 1 2s now"
                                          : "KNOWN_ALARM_CLEARED Filler true 1 1s now";
        EXPECT_THAT(target.world.host.take(), ElementsAre(known, "remove 1"));
    }
    EXPECT_GT(change, 15);
}

/// Every call of an import fails once, those of the replay included.
TEST_F(LoggedEventImport, AFailureEndsTheRecordingAndDropsItsRecords) {
    active(1, 1);
    logged(2, 2, loggedAlarm);
    logged(3, 3, loggedAlarm, true);
    active(4, 4);
    FakeAlarm& recorded = alarm(5, 5);
    FakeMessage& live = message(6);
    logger.afterTheLists = [&] { cleared(recorded, VARIANT_FALSE); };
    import();

    std::size_t failedFetches = 0;
    std::size_t failedReplays = 0;
    for (int reached = 0;; ++reached) {
        const Lines before = world.stored();
        world.border.goodCalls = reached;
        try {
            import();
            break;
        } catch (const ZrAtlCom::CAtlException& exception) {
            EXPECT_EQ(exception.hresult(), E_ACCESSDENIED);
        }
        ++(world.stored() == before ? failedFetches : failedReplays);
        EXPECT_EQ(references(), static_cast<LONG>(world.store.statistics().activeAlarmsCount));
        world.host.take();
        sent(live);
        EXPECT_THAT(world.host.take(), testing::Contains("send 6s")) << "handled at once";
        import();
    }
    EXPECT_GT(failedFetches, 40U);
    EXPECT_GT(failedReplays, 20U);
}

}  // namespace
