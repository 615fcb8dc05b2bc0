#include <chrono>
#include <future>
#include <thread>

#include <gmock/gmock.h>

#include "events/AlarmLifecycle.h"
#include "target/proxy/CAtlException.h"
#include "tests/events/LifecycleWorld.h"

namespace {

using namespace bridge_test;
using testing::ElementsAre;
using testing::IsEmpty;
using ZrHmiSrv::AlarmConfirmationState;
using Lines = std::vector<std::string>;

constexpr bool quiet = true;

FakeEventData raisedAt(int seconds) {
    FakeEventData data;
    data.raised = at(seconds);
    return data;
}

TEST(AlarmLifecycle, TellsTheLogAndThenTheHost) {
    LifecycleWorld world;
    FakeAlarm& alarm = world.alarm(raisedAt(5));
    world.raise(alarm);
    alarm.data.confirmed = at(6);
    alarm.data.confirmationState = 3;
    world.confirm(alarm, VARIANT_FALSE);
    alarm.data.cleared = at(7);
    alarm.data.confirmationState = 9;
    world.clear(alarm, VARIANT_TRUE);
    EXPECT_EQ(world.host.take(), (Lines{"NEW_ALARM_RAISED Filler 1 5s", "raise 1",
                                        "KNOWN_ALARM_CONFIRMED Filler false 1 5s 6s", "update 1",
                                        "KNOWN_ALARM_CLEARED Filler true 1 5s 7s", "remove 1"}));
    EXPECT_EQ(world.host.alarms[0].confirmation_state(), AlarmConfirmationState::not_required);
    EXPECT_EQ(world.host.alarms[1].confirmation_state(), AlarmConfirmationState::confirmed);
    EXPECT_EQ(world.host.alarms[2].confirmation_state(), AlarmConfirmationState::none);
    EXPECT_THAT(world.stored(), ElementsAre("5s alarm 1 cleared 7s confirmed 6s"));
    EXPECT_EQ(alarm.references, 0) << "removed: released, and kept as history";
    EXPECT_EQ(world.store.statistics().inactiveEventsCount, 1U);

    world.clear(alarm, VARIANT_TRUE);
    EXPECT_THAT(world.host.take(), ElementsAre("UNKNOWN_ALARM_CLEARED Filler true 5s 7s"));
}

TEST(AlarmLifecycle, RaisedAgainKeepsTheIdAndSpendsAnother) {
    LifecycleWorld world;
    FakeAlarm& alarm = world.alarm(raisedAt(5));
    FakeAlarm& next = world.alarm(raisedAt(5));
    alarm.data.instanceId = 1;
    next.data.instanceId = 2;
    world.raise(alarm);
    alarm.data.raised = at(9);
    alarm.data.severity = 4;
    world.raise(alarm);
    world.raise(next);
    EXPECT_EQ(world.host.take(), (Lines{"NEW_ALARM_RAISED Filler 1 5s", "raise 1",
                                        "ACTIVE_ALARM_RAISED_AGAIN Filler 1 9s", "raise 1",
                                        "NEW_ALARM_RAISED Filler 3 5s", "raise 3"}));
    EXPECT_EQ(world.host.alarms[1].severity(), ZrHmiSrv::Severity::critical);
    EXPECT_THAT(world.stored(), ElementsAre("5s alarm 3", "9s alarm 1"));

    // It is known by its new time, and of two at one time the number tells which.
    FakeAlarm& standIn = world.alarm(next.data);
    alarm.data.cleared = standIn.data.cleared = at(10);
    world.clear(alarm, VARIANT_FALSE);
    world.clear(standIn, VARIANT_FALSE);
    standIn.data.instanceId.reset();
    world.clear(standIn, VARIANT_FALSE);
    EXPECT_EQ(world.host.take(), (Lines{"KNOWN_ALARM_CLEARED Filler false 1 9s 10s", "update 1",
                                        "KNOWN_ALARM_CLEARED Filler false 3 5s 10s", "update 3",
                                        "UNKNOWN_ALARM_CLEARED Filler false 5s 10s"}));
}

TEST(AlarmLifecycle, TakesATimeThatTheLoggerLeavesOut) {
    LifecycleWorld world;
    FakeAlarm& known = world.alarm(raisedAt(5));
    FakeAlarm& unknown = world.alarm(raisedAt(6));
    world.raise(known);
    world.host.take();
    world.clear(known, 1);  // not the one value that counts as true
    world.confirm(known, VARIANT_FALSE);
    world.clear(unknown, VARIANT_TRUE);
    world.confirm(unknown, VARIANT_FALSE);
    EXPECT_EQ(world.host.take(), (Lines{"KNOWN_ALARM_CLEARED Filler false 1 5s now", "update 1",
                                        "KNOWN_ALARM_CONFIRMED Filler false 1 5s -", "update 1",
                                        "UNKNOWN_ALARM_CLEARED Filler true 6s -",
                                        "UNKNOWN_ALARM_CONFIRMED Filler false 6s -"}));
    EXPECT_THAT(world.stored(), ElementsAre("5s alarm 1 cleared now"));
    EXPECT_EQ(known.references, 1);
}

TEST(AlarmLifecycle, QuietChangesTheStoreAndTheLogOnly) {
    LifecycleWorld world;
    FakeAlarm& alarm = world.alarm(raisedAt(5));
    FakeMessage message(world.border, raisedAt(6));
    world.raise(alarm, quiet);
    world.raise(alarm, quiet);
    world.confirm(alarm, VARIANT_FALSE, quiet);
    world.clear(alarm, VARIANT_TRUE, quiet);
    world.lifecycle.onMessageSent(message, quiet);
    EXPECT_EQ(world.host.take(),
              (Lines{"NEW_ALARM_RAISED Filler 1 5s", "ACTIVE_ALARM_RAISED_AGAIN Filler 1 5s",
                     "KNOWN_ALARM_CONFIRMED Filler false 1 5s -",
                     "KNOWN_ALARM_CLEARED Filler true 1 5s now"}));
    EXPECT_THAT(world.stored(), ElementsAre("5s alarm 1 cleared now", "6s message"));
}

TEST(AlarmLifecycle, ReportsAnEvictionBeforeItsCauseUnlessItIsItsOwn) {
    LifecycleWorld world(1);
    FakeMessage first(world.border, raisedAt(2));
    FakeMessage second(world.border, raisedAt(4));
    FakeMessage late(world.border, raisedAt(1));
    FakeAlarm& alarm = world.alarm(raisedAt(3));
    world.lifecycle.onMessageSent(first, false);
    world.lifecycle.onMessageSent(second, false);
    EXPECT_EQ(world.host.take(),
              (Lines{"send 2s", "FORGET_EVENT Filler 2s", "forget 2s", "send 4s"}));
    world.lifecycle.onMessageSent(late, false);
    EXPECT_EQ(world.host.take(), (Lines{"send 1s", "FORGET_EVENT Filler 1s", "forget 1s"}));
    world.raise(alarm);
    world.clear(alarm, VARIANT_TRUE);
    EXPECT_EQ(world.host.take(), (Lines{"NEW_ALARM_RAISED Filler 1 3s", "raise 1",
                                        "KNOWN_ALARM_CLEARED Filler true 1 3s now", "remove 1",
                                        "FORGET_EVENT Filler 3s", "forget 1"}));
    alarm.data.raised = at(5);
    world.raise(alarm);
    EXPECT_EQ(world.host.take(), (Lines{"FORGET_EVENT Filler 4s", "forget 4s",
                                        "NEW_ALARM_RAISED Filler 2 5s", "raise 2"}));

    LifecycleWorld without(0);
    FakeAlarm& lone = without.alarm(raisedAt(1));
    without.raise(lone);
    EXPECT_THAT(without.stored(), ElementsAre("1s alarm 1"));
    without.clear(lone, VARIANT_TRUE);
    EXPECT_THAT(without.stored(), IsEmpty());
    EXPECT_EQ(lone.references, 0);
}

TEST(Confirmation, ReachesTheLiveAlarmOrFails) {
    LifecycleWorld world;
    FakeAlarm& alarm = world.alarm(raisedAt(5));
    EXPECT_EQ(world.confirmByOperator(1), E_FAIL);
    EXPECT_THAT(world.host.take(), IsEmpty());
    world.raise(alarm);
    world.host.take();
    EXPECT_EQ(world.confirmByOperator(2), E_FAIL);

    alarm.onConfirm = [] { return S_FALSE; };
    EXPECT_EQ(world.confirmByOperator(1), S_FALSE);
    alarm.onConfirm = [] { return E_INVALIDARG; };
    EXPECT_EQ(world.confirmByOperator(1), E_FAIL);
    alarm.onConfirm = []() -> HRESULT { throw 1; };
    EXPECT_EQ(world.confirmByOperator(1), E_FAIL);
    EXPECT_THAT(world.host.take(), ElementsAre("CALL_CONFIRM Filler 1", "CALL_CONFIRM Filler 1",
                                               testing::StartsWith("error Filler "),
                                               "CALL_CONFIRM Filler 1", "error Filler"));

    int confirmed = 0;
    alarm.onConfirm = [&] { return ++confirmed, S_OK; };
    const auto duringTheLog = [&](auto act) {
        world.host.onCall = [&world, act](const std::string& line) {
            if (line.starts_with("CALL_CONFIRM"))
                act();
        };
        return world.confirmByOperator(1);
    };
    EXPECT_EQ(duringTheLog([&] { world.raise(alarm); }), S_OK) << "the same alarm, still live";
    EXPECT_EQ(confirmed, 1);
    EXPECT_EQ(duringTheLog([&] { world.clear(alarm, VARIANT_TRUE); }), E_FAIL);
    EXPECT_EQ(confirmed, 1);
    EXPECT_EQ(world.confirmByOperator(1), E_FAIL) << "history by now";
}

/// Every call of every handler fails once.
TEST(AlarmLifecycle, ANotificationThatFailsLeavesNoTrace) {
    struct Case {
        const char* what;
        void (*notify)(LifecycleWorld&, FakeAlarm&);
        int callsAtLeast;
    };
    const Case cases[] = {
        {"raised", [](LifecycleWorld& world, FakeAlarm& alarm) { world.raise(alarm); }, 12},
        {"cleared",
         [](LifecycleWorld& world, FakeAlarm& alarm) { world.clear(alarm, VARIANT_TRUE); }, 3},
        {"confirmed",
         [](LifecycleWorld& world, FakeAlarm& alarm) { world.confirm(alarm, VARIANT_TRUE); }, 3},
        {"message sent",
         [](LifecycleWorld& world, FakeAlarm& alarm) {
             FakeMessage message(world.border, alarm.data);
             world.lifecycle.onMessageSent(message, false);
         },
         10},
    };
    for (const Case& example : cases) {
        for (const bool known : {false, true}) {
            SCOPED_TRACE(example.what);
            LifecycleWorld world(1);
            FakeMessage older(world.border, raisedAt(1));
            world.lifecycle.onMessageSent(older, false);
            FakeEventData data = raisedAt(2);
            data.instanceId = 1;
            data.json = "{}";
            data.argumentCount = 1;
            data.layout = {1, 0, 1, 1, 1};
            data.block = {1, 2};
            FakeAlarm& alarm = world.alarm(data);
            if (known)
                world.raise(alarm);
            world.host.take();
            const auto before = world.store.statistics();
            const Lines stored = world.stored();
            int reached = 0;
            for (bool failed = true; failed; ++reached) {
                world.border.goodCalls = reached;
                try {
                    example.notify(world, alarm);
                    failed = false;
                } catch (const ZrAtlCom::CAtlException& exception) {
                    EXPECT_EQ(exception.hresult(), E_ACCESSDENIED);
                    EXPECT_THAT(world.host.take(), IsEmpty());
                    EXPECT_EQ(world.store.statistics(), before);
                    EXPECT_EQ(world.stored(), stored);
                    EXPECT_EQ(alarm.references, known ? 1 : 0);
                }
            }
            EXPECT_GT(reached, example.callsAtLeast);
            EXPECT_FALSE(world.host.take().empty()) << "the good one is handled";
        }
    }
}

/// Tells whether another thread gets the store's lock. The lock is recursive, so the own thread
/// cannot tell.
class LockProbe {
public:
    explicit LockProbe(const ZrHmiEventLogger::EventStore& store) : store(store) {}
    ~LockProbe() {
        for (std::thread& thread : threads)
            thread.join();
    }
    bool isFree() {
        std::packaged_task<void()> look([this] { store.read([](const auto&) {}); });
        std::future<void> done = look.get_future();
        threads.emplace_back(std::move(look));
        return done.wait_for(std::chrono::seconds(2)) == std::future_status::ready;
    }

private:
    const ZrHmiEventLogger::EventStore& store;
    std::vector<std::thread> threads;
};

TEST(AlarmLifecycle, CallsNobodyWithTheStoreLocked) {
    LifecycleWorld world(1);
    FakeAlarm& first = world.alarm(raisedAt(1));
    FakeAlarm& second = world.alarm(raisedAt(2));
    FakeMessage message(world.border, raisedAt(3));
    LockProbe probe(world.store);
    std::size_t calls = 0;
    bool locked = false;
    const auto look = [&] {
        ++calls;
        locked = locked || !probe.isFree();
    };
    world.border.onCall = look;
    world.host.onCall = [&](const std::string&) { look(); };
    world.raise(first);
    world.raise(second);
    world.raise(first);
    world.confirmByOperator(1);
    world.lifecycle.onMessageSent(message, false);
    world.confirm(second, VARIANT_FALSE);
    world.clear(first, VARIANT_TRUE);
    world.clear(second, VARIANT_TRUE);
    EXPECT_FALSE(locked);
    EXPECT_GT(calls, 40U);
}

}  // namespace
