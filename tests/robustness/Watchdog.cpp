#include "robustness/Watchdog.h"

#include <cstdlib>
#include <iostream>

#ifdef __linux__
#include <array>
#include <atomic>
#include <csignal>
#include <dlfcn.h>
#include <execinfo.h>
#include <filesystem>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace bridge_test {

namespace {

#ifdef __linux__

std::array<void*, 64> frames;
std::atomic<int> taken;  ///< how many, -1 until the thread has answered

/// On the thread whose stack is asked for.
void takeFrames(int) {
    taken = backtrace(frames.data(), static_cast<int>(frames.size()));
}

void printFrame(void* frame) {
    Dl_info module{};
    if (dladdr(frame, &module) == 0) {
        std::cerr << "  " << frame << std::endl;
        return;
    }
    const auto offset =
        static_cast<const char*>(frame) - static_cast<const char*>(module.dli_fbase) - 1;
    const std::string place = std::string(module.dli_fname) + " " + std::to_string(offset);
    std::cerr << "  " << place << ": " << std::flush;
    const std::string command = "addr2line -Cfpe " + std::string(module.dli_fname) +
                                " $(printf %x " + std::to_string(offset) + ") >&2";
    if (std::system(command.c_str()) != 0)
        std::cerr << std::endl;
}

void printStack(int thread) {
    taken = -1;
    if (syscall(SYS_tgkill, getpid(), thread, SIGUSR2) != 0)
        return;
    for (int i = 0; i < 100 && taken < 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::cerr << "thread " << thread << (taken < 0 ? " does not answer" : "") << std::endl;
    for (int i = 0; i < taken; ++i)
        printFrame(frames[static_cast<std::size_t>(i)]);
}

void printAllStacks() {
    std::signal(SIGUSR2, takeFrames);
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task"))
        if (const int thread = std::stoi(task.path().filename()); thread != gettid())
            printStack(thread);
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
    std::cerr << "hangs for " << limit.count() << " s; its threads:" << std::endl;
    printAllStacks();
    std::abort();
}

}  // namespace bridge_test
