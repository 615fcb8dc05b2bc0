#include <atomic>
#include <future>
#include <thread>

#include <gtest/gtest.h>

#include "server/extension/ListenerRegistry.h"

using ZrHmiSrv::Context;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;

namespace hmi {

namespace {

struct Shutdown final : ZrHmiSrv::IZrHmiSrvShutdownListener {
    ResultPair shutdown(const Context&) override { return ErrorValue::success; }
};

using Listener = ZrHmiSrv::IZrHmiSrvShutdownListener;

TEST(ListenerRegistry, RemovalWaitsForRunningCalls) {
    ListenerRegistry registry;
    Shutdown listener, second;
    ASSERT_TRUE(registry.add(&listener));
    EXPECT_FALSE(registry.add(&second)) << "one of each type";
    EXPECT_FALSE(registry.add(nullptr));
    std::atomic<bool> left = false;
    std::future<void> removal;
    {
        const auto running = registry.call<Listener>();
        removal = std::async(std::launch::async, [&] {
            EXPECT_TRUE(registry.remove(&listener));
            EXPECT_TRUE(left) << "the listener was taken away under its call";
        });
        // No new call begins while the removal waits for the old one.
        while (registry.call<Listener>())
            std::this_thread::yield();
        left = true;
    }
    removal.get();
    EXPECT_FALSE(registry.remove(&listener));
}

}  // namespace

}  // namespace hmi
