#include <atomic>
#include <chrono>
#include <future>
#include <limits>
#include <optional>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "host/Threading.h"
#include "support/RecordingHost.h"

namespace ZrHmiSrv {
namespace {

using namespace std::chrono_literals;

const Context context(Text("plant"));

/// Far longer than any test takes: such a timer ends only by being aborted.
constexpr std::size_t longDelay = std::numeric_limits<std::size_t>::max();
constexpr std::size_t longStop = 60'000;

TEST(Threading, StopAbortsWhatIsPendingAndTakesNothingNew) {
    std::atomic<int> aborted = 0;
    std::atomic<int> scheduledAgain = 0;
    Threading threading(2);
    for (int i = 0; i < 50; ++i) {
        threading.schedule(longDelay, context, [&](TimerError error, const Context& given) {
            aborted += error == TimerError::aborted;
            scheduledAgain += threading.schedule(0, given, [](TimerError, const Context&) {});
        });
    }
    EXPECT_TRUE(threading.stop(longStop));
    EXPECT_EQ(aborted, 50);
    EXPECT_EQ(scheduledAgain, 0);
}

TEST(Threading, StopIsBoundedAndTheDestructorIsNot) {
    std::promise<void> entered;
    std::promise<void> proceed;
    bool finished = false;
    std::optional<Threading> threading(1);
    threading->schedule(0, context, [&](TimerError, const Context&) {
        entered.set_value();
        proceed.get_future().wait();
        finished = true;
    });
    entered.get_future().wait();
    EXPECT_FALSE(threading->stop(20));
    proceed.set_value();
    threading.reset();
    EXPECT_TRUE(finished);
}

TEST(Threading, WorkersThatStopThePoolWaitNeitherForThemselvesNorForEachOther) {
    Threading threading(2);
    std::atomic<int> inside = 0;
    std::atomic<int> stopped = 0;
    const auto waitForBoth = [&] {
        while (inside < 2)
            std::this_thread::yield();
    };
    for (int i = 0; i < 2; ++i) {
        threading.schedule(0, context, [&](TimerError, const Context&) {
            ++inside;
            waitForBoth();
            stopped += threading.stop(longStop);
        });
    }
    waitForBoth();
    EXPECT_TRUE(threading.stop(longStop / 4));
    EXPECT_EQ(stopped, 2);
}

TEST(Threading, ATimerCallsBackAfterItsDelayAndAnExceptionEndsThatCallbackAlone) {
    bridge_test::RecordingHost host;
    initialize_api(&host);
    std::optional<Threading> threading(1);
    std::promise<bool> called;
    auto future = called.get_future();
    const auto start = std::chrono::steady_clock::now();
    threading->schedule(0, context,
                        [](TimerError, const Context&) { throw std::runtime_error("disk full"); });
    threading->schedule(0, context, [](TimerError, const Context&) { throw 5; });
    threading->schedule(20, context, [&](TimerError error, const Context& given) {
        called.set_value(error == TimerError::none && given.domain() == Text("plant"));
    });
    ASSERT_EQ(future.wait_for(20s), std::future_status::ready);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
    EXPECT_TRUE(future.get());
    threading.reset();
    initialize_api(nullptr);
    ASSERT_EQ(host.log.size(), 2u);
    EXPECT_STREQ(host.log[0].name().c_str(), "THREADING_TASK_FAILED");
    EXPECT_EQ(host.log[0].parameters().get_map().get("0").get_string(), "disk full");
}

TEST(Threading, APeriodicTimerOutlivesItsExceptionsAndIsAbortedOnce) {
    std::atomic<int> ticks = 0;
    std::atomic<int> aborted = 0;
    std::promise<void> third;
    Threading threading(2);
    threading.schedule_periodic(1, context, [&](TimerError error, const Context&) {
        if (error == TimerError::aborted)
            return static_cast<void>(++aborted);
        if (++ticks == 3)
            third.set_value();
        throw std::bad_alloc();
    });
    third.get_future().wait();
    EXPECT_TRUE(threading.stop(longStop));
    const int atTheEnd = ticks;
    EXPECT_EQ(aborted, 1);
    EXPECT_GE(atTheEnd, 3);
}

// A timer that schedules itself again meets the end of the pool at every point of its cycle.
TEST(Threading, NothingRunsAfterTheDestructor) {
    for (int round = 0; round < 300; ++round) {
        std::atomic<bool> destroyed = false;
        std::atomic<bool> late = false;
        std::optional<Threading> threading(2);
        Threading::TimerCallback tick = [&](TimerError error, const Context& given) {
            late = late || destroyed;
            if (error == TimerError::none)
                threading->schedule(0, given, tick);
        };
        threading->schedule(0, context, tick);
        threading->schedule(1, context, tick);
        if (round % 2 == 0)
            threading->stop(0);
        threading.reset();
        destroyed = true;
        ASSERT_FALSE(late);
    }
}

}  // namespace
}  // namespace ZrHmiSrv
