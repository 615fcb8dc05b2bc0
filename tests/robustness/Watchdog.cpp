#include "robustness/Watchdog.h"

#include <array>
#include <cstdlib>
#include <iostream>

#define BOOST_STACKTRACE_USE_ADDR2LINE
#include <boost/stacktrace.hpp>

#ifdef __linux__
#include <atomic>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace bridge_test {

namespace {

#ifdef __linux__

using Frames = std::array<boost::stacktrace::frame::native_frame_ptr_t, 64>;

Frames frames;
std::atomic<bool> taken;

/// On the thread whose stack is asked for.
void takeFrames(int) {
    boost::stacktrace::safe_dump_to(frames.data(), sizeof(frames));
    taken = true;
}

void printStack(int thread) {
    frames.fill(nullptr);
    taken = false;
    if (syscall(SYS_tgkill, getpid(), thread, SIGUSR2) != 0)
        return;
    for (int i = 0; i < 100 && !taken; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::cerr << "thread " << thread << ":\n"
              << boost::stacktrace::stacktrace::from_dump(frames.data(), sizeof(frames))
              << std::endl;
}

void printAllStacks() {
    std::signal(SIGUSR2, takeFrames);
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task"))
        printStack(std::stoi(task.path().filename()));
}

#else

void printAllStacks() {
    std::cerr << "the stacks of other threads cannot be had here\n";
}

#endif

}  // namespace

Watchdog::Watchdog(std::chrono::seconds limit) : thread([this, limit] { watch(limit); }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard lock(mutex);
        over = true;
    }
    changed.notify_all();
    thread.join();
}

void Watchdog::watch(std::chrono::seconds limit) {
    std::unique_lock lock(mutex);
    if (changed.wait_for(lock, limit, [this] { return over; }))
        return;
    std::cerr << "hangs for " << limit.count() << " s; its threads:\n";
    printAllStacks();
    std::abort();
}

}  // namespace bridge_test
