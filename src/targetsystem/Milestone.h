#pragma once

#include <chrono>
#include <condition_variable>

#include "platform/Mutex.h"

namespace ZrHmiEventLogger {

/// Something that happens once and that others wait for. Any thread.
class Milestone {
public:
    void reach() EXCLUDES(mutex) {
        Lock lock(mutex);
        reached = true;
        changed.notify_all();
    }
    /// False when it was not reached in time.
    bool waitUntil(std::chrono::steady_clock::time_point deadline) EXCLUDES(mutex) {
        Lock lock(mutex);
        while (!reached) {
            if (deadline == std::chrono::steady_clock::time_point::max())
                changed.wait(lock);
            else if (changed.wait_until(lock, deadline) == std::cv_status::timeout)
                break;
        }
        return reached;
    }

private:
    Mutex mutex;  ///< guards the flag; nothing is called under it
    std::condition_variable_any changed;
    bool reached GUARDED_BY(mutex) = false;
};

}  // namespace ZrHmiEventLogger
