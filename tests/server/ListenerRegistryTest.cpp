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
    Shutdown listener;
    ASSERT_TRUE(registry.add(&listener));
    std::promise<void> entered;
    std::promise<void> leave;
    std::atomic<bool> left = false;
    std::thread caller([&] {
        const auto call = registry.call<Listener>();
        entered.set_value();
        leave.get_future().wait();
        left = true;
    });
    entered.get_future().wait();
    std::thread remover([&] {
        EXPECT_TRUE(registry.remove(&listener));
        EXPECT_TRUE(left) << "the listener was taken away under its call";
    });
    // No new call begins while the removal waits for the old one.
    while (registry.call<Listener>())
        std::this_thread::yield();
    leave.set_value();
    caller.join();
    remover.join();
    EXPECT_FALSE(registry.remove(&listener));
}

TEST(ListenerRegistry, RemovalInsideACallDoesNotWaitForIt) {
    ListenerRegistry registry;
    Shutdown listener;
    Shutdown second;
    ASSERT_TRUE(registry.add(&listener));
    EXPECT_FALSE(registry.add(&second)) << "one of each type";
    EXPECT_FALSE(registry.add(nullptr));
    {
        const auto outer = registry.call<Listener>();
        const auto inner = registry.call<Listener>();
        EXPECT_TRUE(registry.remove(&listener));
        EXPECT_TRUE(registry.add(&second));
        registry.clear();
        EXPECT_FALSE(registry.call<Listener>());
    }
    EXPECT_TRUE(registry.add(&listener));
}

}  // namespace

}  // namespace hmi
