#include <atomic>
#include <chrono>
#include <future>
#include <limits>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "host/IZrHmiSrvExtHost.h"
#include "host/Threading.h"
#include "platform/Mutex.h"

namespace ZrHmiSrv {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

const Context context(Text("plant"));

/// Far longer than any test takes: such a timer ends only by being aborted.
constexpr std::size_t longDelay = std::numeric_limits<std::size_t>::max();
constexpr std::size_t longStop = 60'000;

/// Something that one thread waits for and another one sets.
class Signal {
public:
    void set() { promise.set_value(); }
    bool wait() const { return future.wait_for(20s) == std::future_status::ready; }

private:
    std::promise<void> promise;
    std::shared_future<void> future = promise.get_future().share();
};

/// Keeps the messages that it is sent.
class LoggingHost final : public IZrHmiSrvExtHost {
public:
    ResultPair send_message(const Context&, Message& message, bool publish) override {
        Lock lock(mutex);
        if (!publish)
            log.push_back(message);
        if (failing)
            throw std::runtime_error("no log");
        return ErrorValue::success;
    }
    ResultPair register_listener_with_settings(const Context&, IZrHmiSrvListener*,
                                               const Value&) override {
        return {};
    }
    ResultPair register_listener(const Context&, IZrHmiSrvListener*) override { return {}; }
    ResultPair unregister_listener(const Context&, IZrHmiSrvListener*) override { return {}; }
    ResultPair apply_alarm(const Context&, AlarmOperation, Alarm) override { return {}; }
    ResultPair drop_event(const Context&, Event) override { return {}; }
    ResultPair read_configuration(Value&, const Context&, const char*) override { return {}; }
    ResultPair reset_events(const Context&) override { return {}; }
    ResultPair announce(const Context&, const char*) override { return {}; }

    std::vector<Message> messages() {
        Lock lock(mutex);
        return log;
    }
    void fail() {
        Lock lock(mutex);
        failing = true;
    }

private:
    Mutex mutex;
    std::vector<Message> log GUARDED_BY(mutex);
    bool failing GUARDED_BY(mutex) = false;
};

TEST(ThreadingTest, ATimerCallsBackOnAWorkerAfterItsDelay) {
    Threading threading(2);
    std::promise<std::tuple<TimerError, std::string, std::thread::id>> called;
    const Clock::time_point start = Clock::now();
    ASSERT_TRUE(threading.schedule(20, context, [&](TimerError error, const Context& given) {
        called.set_value({error, given.domain().c_str(), std::this_thread::get_id()});
    }));
    auto future = called.get_future();
    ASSERT_EQ(future.wait_for(20s), std::future_status::ready);
    const auto [error, domain, thread] = future.get();
    EXPECT_GE(Clock::now() - start, 20ms);
    EXPECT_EQ(error, TimerError::none);
    EXPECT_EQ(domain, "plant");
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(ThreadingTest, StopAbortsWhatIsPendingAndTakesNothingNew) {
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
    EXPECT_FALSE(threading.schedule(0, context, [](TimerError, const Context&) {}));
    EXPECT_TRUE(threading.stop(0));
}

TEST(ThreadingTest, StopIsBoundedAndTheDestructorIsNot) {
    Signal entered;
    Signal proceed;
    bool finished = false;
    std::optional<Threading> threading(1);
    threading->schedule(0, context, [&](TimerError, const Context&) {
        entered.set();
        proceed.wait();
        finished = true;
    });
    ASSERT_TRUE(entered.wait());
    EXPECT_FALSE(threading->stop(20));
    EXPECT_FALSE(threading->stop(0));
    proceed.set();
    threading.reset();
    EXPECT_TRUE(finished);
}

TEST(ThreadingTest, WorkersThatStopThePoolWaitNeitherForThemselvesNorForEachOther) {
    constexpr std::size_t workers = 3;
    Threading threading(workers);
    std::promise<bool> results[workers];
    std::atomic<std::size_t> inside = 0;
    for (auto& result : results) {
        threading.schedule(0, context, [&](TimerError, const Context&) {
            ++inside;
            while (inside < workers)
                std::this_thread::yield();
            result.set_value(threading.stop(longStop));
        });
    }
    for (auto& result : results) {
        auto future = result.get_future();
        ASSERT_EQ(future.wait_for(20s), std::future_status::ready);
        EXPECT_TRUE(future.get());
    }
    EXPECT_TRUE(threading.stop(longStop));
}

TEST(ThreadingTest, AnExceptionIsReportedAndEndsThatCallbackAlone) {
    LoggingHost host;
    initialize_api(&host);
    {
        Threading threading(1);
        const auto schedule = [&](Threading::TimerCallback callback) {
            ASSERT_TRUE(threading.schedule(0, context, std::move(callback)));
        };
        schedule([](TimerError, const Context&) { throw std::runtime_error("disk full"); });
        schedule([](TimerError, const Context&) { throw 5; });
        schedule(nullptr);
        schedule([&](TimerError, const Context&) {
            host.fail();
            throw std::runtime_error("not even a log");
        });
        Signal alive;
        schedule([&](TimerError, const Context&) { alive.set(); });
        EXPECT_TRUE(alive.wait());
    }
    initialize_api(nullptr);

    const std::vector<Message> messages = host.messages();
    ASSERT_EQ(messages.size(), 4u);
    for (const Message& message : messages) {
        EXPECT_STREQ(message.name().c_str(), "THREADING_TASK_FAILED");
        EXPECT_STREQ(message.domain().c_str(), "plant");
        EXPECT_EQ(message.severity(), Severity::unspecified);
        EXPECT_TRUE(message.time_raised().isset());
        EXPECT_NE(message.parameters().get_map().get("0").get_string(), "");
    }
    EXPECT_EQ(messages[0].parameters().get_map().get("0").get_string(), "disk full");
}

// A timer that schedules itself again meets the end of the pool at every point of its cycle.
TEST(ThreadingTest, NothingRunsAfterTheDestructor) {
    for (int round = 0; round < 300; ++round) {
        std::atomic<bool> destroyed = false;
        std::atomic<bool> late = false;
        std::optional<Threading> threading(2);
        std::function<void(TimerError, const Context&)> tick = [&](TimerError error,
                                                                   const Context& given) {
            late = late || destroyed;
            if (error == TimerError::none)
                threading->schedule(0, given, tick);
        };
        threading->schedule(0, context, tick);
        threading->schedule(1, context, tick);
        if (round % 2 == 0)
            threading->stop(0);
        else if (round % 3 == 0)
            std::this_thread::yield();
        threading.reset();
        destroyed = true;
        ASSERT_FALSE(late);
    }
}

}  // namespace
}  // namespace ZrHmiSrv
