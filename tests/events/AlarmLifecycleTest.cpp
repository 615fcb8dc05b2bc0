#include <chrono>
#include <future>
#include <span>
#include <thread>

#include <gmock/gmock.h>

#include "targetsystem/proxy/CAtlException.h"
#include "tests/events/TargetWorld.h"

namespace {

using namespace bridge_test;
using namespace testing;
using ZrHmiSrv::AlarmConfirmationState;
using Lines = std::vector<std::string>;

struct AlarmLifecycle : Test, TargetWorld {
    AlarmLifecycle() : TargetWorld(100) {}
};

/// With room for one event.
struct CrowdedLifecycle : Test, TargetWorld {
    CrowdedLifecycle() : TargetWorld(1) {}
};

TEST_F(AlarmLifecycle, TellsTheLogAndThenTheHost) {
    FakeEvent& alarm = source(5);
    raised(alarm);
    alarm.data.confirmed = at(6);
    alarm.data.confirmationState = 3;
    confirmed(alarm, VARIANT_FALSE);
    alarm.data.cleared = at(7);
    alarm.data.confirmationState = 9;
    cleared(alarm, VARIANT_TRUE);
    EXPECT_EQ(host.take(), (Lines{"NEW_ALARM_RAISED Filler 1 5s", "raise 1",
                                  "KNOWN_ALARM_CONFIRMED Filler false 1 5s 6s", "update 1",
                                  "KNOWN_ALARM_CLEARED Filler true 1 5s 7s", "remove 1"}));
    EXPECT_EQ(host.alarms[0].confirmation_state(), AlarmConfirmationState::not_required);
    EXPECT_EQ(host.alarms[1].confirmation_state(), AlarmConfirmationState::confirmed);
    EXPECT_EQ(host.alarms[2].confirmation_state(), AlarmConfirmationState::none);
    EXPECT_THAT(stored(), ElementsAre("5s alarm 1 cleared 7s confirmed 6s"));
    EXPECT_EQ(alarm.references, 0) << "removed: released, and kept as history";
    EXPECT_EQ(store.statistics().inactiveEventsCount, 1U);

    cleared(alarm, VARIANT_TRUE);
    EXPECT_THAT(host.take(), ElementsAre("UNKNOWN_ALARM_CLEARED Filler true 5s 7s"));
}

TEST_F(AlarmLifecycle, RaisedAgainKeepsTheIdAndSpendsAnother) {
    FakeEvent& alarm = source(5, 1);
    FakeEvent& next = source(5, 2);
    raised(alarm);
    alarm.data.raised = at(9);
    alarm.data.severity = 4;
    raised(alarm);
    raised(next);
    EXPECT_EQ(host.take(), (Lines{"NEW_ALARM_RAISED Filler 1 5s", "raise 1",
                                  "ACTIVE_ALARM_RAISED_AGAIN Filler 1 9s", "raise 1",
                                  "NEW_ALARM_RAISED Filler 3 5s", "raise 3"}));
    EXPECT_EQ(host.alarms[1].severity(), ZrHmiSrv::Severity::critical);
    EXPECT_THAT(stored(), ElementsAre("5s alarm 3", "9s alarm 1"));

    // It is known by its new time, and of two at one time the number tells which.
    FakeEvent& standIn = source(5, 2);
    alarm.data.cleared = standIn.data.cleared = at(10);
    cleared(alarm, VARIANT_FALSE);
    cleared(standIn, VARIANT_FALSE);
    standIn.data.instanceId.reset();
    cleared(standIn, VARIANT_FALSE);
    EXPECT_EQ(host.take(), (Lines{"KNOWN_ALARM_CLEARED Filler false 1 9s 10s", "update 1",
                                  "KNOWN_ALARM_CLEARED Filler false 3 5s 10s", "update 3",
                                  "UNKNOWN_ALARM_CLEARED Filler false 5s 10s"}));

    // Raised again while it is converted, it is known by the time that was converted.
    FakeEvent& restless = source(20, 4);
    border.onCall = [&, first = border.calls + 1] {
        if (border.calls > first)
            restless.data.raised = at(21);
    };
    raised(restless);
    FakeEvent& other = source(21, 4);
    cleared(other, VARIANT_FALSE);
    EXPECT_THAT(host.take(), Contains("KNOWN_ALARM_CLEARED Filler false 4 21s now"));

    // Without a number only the object tells.
    raised(source(30));
    host.take();
    cleared(source(30), VARIANT_FALSE);
    EXPECT_THAT(host.take(), ElementsAre("UNKNOWN_ALARM_CLEARED Filler false 30s -"));
}

TEST_F(AlarmLifecycle, TakesATimeThatTheLoggerLeavesOut) {
    FakeEvent& known = source(5);
    FakeEvent& unknown = source(6);
    raised(known);
    host.take();
    cleared(known, 1);  // not the one value that counts as true
    confirmed(known, VARIANT_FALSE);
    cleared(unknown, VARIANT_TRUE);
    confirmed(unknown, VARIANT_FALSE);
    EXPECT_EQ(host.take(), (Lines{"KNOWN_ALARM_CLEARED Filler false 1 5s now", "update 1",
                                  "KNOWN_ALARM_CONFIRMED Filler false 1 5s -", "update 1",
                                  "UNKNOWN_ALARM_CLEARED Filler true 6s -",
                                  "UNKNOWN_ALARM_CONFIRMED Filler false 6s -"}));
    EXPECT_THAT(stored(), ElementsAre("5s alarm 1 cleared now"));
    EXPECT_EQ(known.references, 1);

    // What has ended was cleared, also when the logger does not say so.
    FakeEvent& timeless = source(7);
    FakeEvent& brief = source(8);
    brief.data.cleared = at(8);
    for (FakeEvent* alarm : {&timeless, &brief}) {
        raised(*alarm);
        confirmed(*alarm, VARIANT_FALSE);
        EXPECT_THAT(stored().back(), Not(HasSubstr("cleared")));
        confirmed(*alarm, VARIANT_TRUE);
    }
    EXPECT_THAT(stored(), ElementsAre("5s alarm 1 cleared now", "7s alarm 2 cleared now",
                                      "8s alarm 3 cleared 8s"));
}

TEST_F(CrowdedLifecycle, ReportsAnEvictionBeforeItsCauseUnlessItIsItsOwn) {
    sent(source(2));
    sent(source(4));
    sent(source(1));
    FakeEvent& alarm = source(3);
    raised(alarm);
    cleared(alarm, VARIANT_TRUE);
    alarm.data.raised = at(5);
    raised(alarm);
    EXPECT_EQ(host.take(),
              (Lines{"send 2s", "FORGET_EVENT Filler 2s", "forget 2s", "send 4s", "send 1s",
                     "FORGET_EVENT Filler 1s", "forget 1s", "NEW_ALARM_RAISED Filler 1 3s",
                     "raise 1", "KNOWN_ALARM_CLEARED Filler true 1 3s now", "remove 1",
                     "FORGET_EVENT Filler 3s", "forget 1", "FORGET_EVENT Filler 4s", "forget 4s",
                     "NEW_ALARM_RAISED Filler 2 5s", "raise 2"}));
}

TEST_F(AlarmLifecycle, AConfirmationReachesTheLiveAlarmOrFails) {
    FakeEvent& alarm = source(5);
    EXPECT_EQ(confirmByOperator(1), E_FAIL);
    EXPECT_THAT(host.take(), IsEmpty());
    raised(alarm);
    host.take();
    EXPECT_EQ(confirmByOperator(2), E_FAIL);

    alarm.onConfirm = [] { return S_FALSE; };
    EXPECT_EQ(confirmByOperator(1), S_FALSE);
    alarm.onConfirm = [] { return E_INVALIDARG; };
    EXPECT_EQ(confirmByOperator(1), E_FAIL);
    alarm.onConfirm = []() -> HRESULT { throw 1; };
    EXPECT_EQ(confirmByOperator(1), E_FAIL);
    EXPECT_THAT(host.take(),
                ElementsAre("CALL_CONFIRM Filler 1", "CALL_CONFIRM Filler 1",
                            StartsWith("error Filler "), "CALL_CONFIRM Filler 1", "error Filler"));

    int confirmed = 0;
    alarm.onConfirm = [&] { return ++confirmed, S_OK; };
    const auto duringTheLog = [&](auto act) {
        host.onCall = [act](const std::string& line) {
            if (line.starts_with("CALL_CONFIRM"))
                act();
        };
        return confirmByOperator(1);
    };
    EXPECT_EQ(duringTheLog([&] { raised(alarm); }), S_OK) << "the same alarm, still live";
    EXPECT_EQ(duringTheLog([&] { cleared(alarm, VARIANT_TRUE); }), E_FAIL);
    EXPECT_EQ(confirmByOperator(1), E_FAIL) << "history by now";
    EXPECT_EQ(confirmed, 1);
}

TEST_F(AlarmLifecycle, AConfirmationIsNotOfTheAlarmThatCameWhileItWaited) {
    FakeEvent& hanging = source(5);
    FakeEvent& alarm = source(6);
    raised(hanging);
    raised(alarm);
    int confirmed = 0;
    alarm.onConfirm = [&] { return ++confirmed, S_OK; };
    std::promise<void> waiting;
    host.onCall = [&](const std::string& line) {
        if (line == "CALL_CONFIRM Filler 2")
            waiting.set_value();
    };
    std::future<HRESULT> result;
    hanging.onConfirm = [&] {
        result = std::async(std::launch::async, [this] { return confirmByOperator(2); });
        waiting.get_future().wait();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));  // as far as it comes
        cleared(alarm, VARIANT_TRUE);
        raised(alarm);
        return S_OK;
    };
    EXPECT_EQ(confirmByOperator(1), S_OK);
    EXPECT_EQ(result.get(), E_FAIL);
    EXPECT_EQ(confirmed, 0);
}

/// Every call of every handler fails once, and is the last of a target that is retired in it.
TEST(NotificationThatFailsOrIsAbandoned, LeavesNoTrace) {
    void (*const notifications[])(TargetWorld&, FakeEvent&) = {
        [](TargetWorld& world, FakeEvent& source) { world.raised(source); },
        [](TargetWorld& world, FakeEvent& source) { world.cleared(source, VARIANT_TRUE); },
        [](TargetWorld& world, FakeEvent& source) { world.confirmed(source, VARIANT_TRUE); },
        [](TargetWorld& world, FakeEvent& source) { world.sent(source); },
    };
    for (const auto notify : notifications) {
        TargetWorld world(1);
        world.sent(world.source(1));
        FakeEvent& source = world.source(2, 1);
        source.data.json = "{}";
        source.data.sourceName = "Tank";
        source.data.layout = {0, 0, 1, 1, 1};
        world.raised(source);
        world.host.take();
        const auto before = world.store.statistics();
        const Lines stored = world.stored();
        int lastCall = 0;
        world.border.onCall = [&] {
            world.retired = world.retired || world.border.calls == lastCall;
        };
        const auto attempt = [&] {
            try {
                notify(world, source);
            } catch (const ZrAtlCom::CAtlException& exception) {
                EXPECT_EQ(exception.hresult(), E_ACCESSDENIED);
            } catch (const ZrHmiEventLogger::Abandoned&) {
                EXPECT_EQ(world.border.calls, lastCall);
            }
        };
        int good = 0;
        for (; world.host.take().empty(); ++good) {
            EXPECT_EQ(world.store.statistics(), before);
            EXPECT_EQ(world.stored(), stored);
            EXPECT_EQ(source.references, 1);
            lastCall = world.border.calls + good + 1;
            attempt();
            EXPECT_EQ(world.retired, world.host.take().empty());
            world.retired = false;
            lastCall = 0;
            world.border.goodCalls = good;
            attempt();
        }
        EXPECT_GT(good, 3);
    }
}

struct CountingReceiver final : ZrHmiSrv::IEventReceiver {
    std::size_t calls = 0;
    void replace_events(const char*, std::span<const ZrHmiSrv::Event>) override { ++calls; }
};

TEST_F(CrowdedLifecycle, HandsOverAllBetweenTwoStepsAndNeverWaitsForTheProxy) {
    // The lock is recursive: only another thread can tell.
    CountingReceiver receiver;
    const auto isFree = [&] {
        return std::async(std::launch::async, [&] { return store.tryProvideEvents(receiver); })
            .get();
    };
    FakeEvent& first = source(1);
    FakeEvent& second = source(2);
    second.onConfirm = [&] { return isFree() ? S_OK : E_UNEXPECTED; };
    border.onCall = [&] { EXPECT_TRUE(isFree()); };
    host.onCall = [&](const std::string& line) {
        EXPECT_EQ(isFree(), line.starts_with("CALL_CONFIRM")) << line;
    };
    raised(first);
    raised(second);
    raised(first);
    EXPECT_EQ(confirmByOperator(2), S_OK);
    sent(source(3));
    confirmed(second, VARIANT_FALSE);
    cleared(first, VARIANT_TRUE);
    cleared(second, VARIANT_TRUE);
    EXPECT_GT(receiver.calls, 30U);

    receiver.calls = 0;
    store.tryProvideEvents(receiver);
    retired = true;
    store.tryProvideEvents(receiver);
    EXPECT_EQ(receiver.calls, 1U) << "of a target that is over nothing is shown any more";
}

}  // namespace
