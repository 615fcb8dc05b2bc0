#include <atomic>
#include <future>


#include <boost/thread/latch.hpp>
#include <gmock/gmock.h>

#include "server/lanes/CappedLane.h"

namespace hmi {

namespace {

constexpr int targets = 20;

TEST(Lanes, ATargetSystemThatHangsTakesItsShareAndNoMore) {
    CappedLane lane("calls", {100, 2, 3, 1000});
    std::promise<void> opened;
    const auto gate = opened.get_future().share();
    boost::latch started(2 * targets);
    std::atomic<int> ran = 0;
    std::atomic<int> refused = 0;
    std::string reason;
    const auto submit = [&](int times) {
        for (int i = 0; i < targets * times; ++i)
            lane.run("T" + std::to_string(i % targets), {[&] {
                                                             started.count_down();
                                                             gate.wait();
                                                             ++ran;
                                                         },
                                                         [&](const std::string& why) {
                                                             reason = why;
                                                             ++refused;
                                                         }});
    };
    submit(2);
    started.wait();
    submit(4);
    EXPECT_EQ(refused, targets) << "one of each did not fit";
    EXPECT_EQ(reason,
              "target system T19 is busy: 2 calls are under way and 3 wait; try again later");
    std::promise<void> healthy;
    lane.run("healthy", {[&] { healthy.set_value(); }, {}});
    healthy.get_future().wait();
    EXPECT_EQ(lane.running().at("T7"), 2U);
    EXPECT_EQ(lane.usage().waiting, 3U * targets);

    lane.stop();
    EXPECT_EQ(refused, 4 * targets) << "what waited will never run";
    submit(1);
    EXPECT_EQ(refused, 5 * targets);
    opened.set_value();
    lane.join();
    EXPECT_EQ(ran, 2 * targets);
    EXPECT_THAT(lane.running(), testing::IsEmpty());
}

TEST(Lanes, WorkOfOneTargetSystemKeepsItsOrderAndAllOfItRuns) {
    CappedLane lane("changes", {4, 1, 1000, 10'000});
    boost::latch done(8 * 500);
    std::vector<int> last(8, -1);  // each written by one thread at a time, as one runs at a time
    for (int i = 0; i < 8 * 500; ++i)
        lane.run(std::to_string(i % 8), {[&, i] {
                                             EXPECT_LT(last[static_cast<std::size_t>(i % 8)], i);
                                             last[static_cast<std::size_t>(i % 8)] = i;
                                             done.count_down();
                                         },
                                         [](const std::string& why) { FAIL() << why; }});
    done.wait();
}

}  // namespace

}  // namespace hmi
