#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <string>
#include <thread>

#include "platform/Mutex.h"

namespace hmi {

/// Sees to it that stopping has an end: tells what it waits for, and ends the process when an
/// extension does not let go. Stopping is over when it is destroyed.
class StopDeadline {
public:
    /// `running` tells, on a thread of this object's own, what still runs; empty: the extension.
    StopDeadline(std::chrono::milliseconds patience, std::function<std::string()> running);
    ~StopDeadline();

private:
    void watch(std::chrono::milliseconds patience);
    bool isOverWithin(std::chrono::milliseconds time);

    const std::function<std::string()> running;
    Mutex mutex;  ///< guards the flag; nothing is called under it
    std::condition_variable_any changed;
    bool isOver GUARDED_BY(mutex) = false;
    std::thread thread;
};

}  // namespace hmi
