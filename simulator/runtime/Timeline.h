#pragma once

#include <condition_variable>
#include <functional>
#include <thread>
#include <vector>

#include "platform/Mutex.h"
#include "simulator/plant/Action.h"

namespace ZrSimulator {

/// Plays the steps of a timeline on a thread of its own, once or again and again.
class Timeline {
public:
    using Apply = std::function<void(const Action&)>;

    Timeline(std::vector<TimelineStep> steps, bool repeat, Apply apply);
    /// Waits for a running step.
    ~Timeline();

private:
    void run();
    /// False when the timeline ends.
    bool waitFor(std::chrono::milliseconds time);

    const std::vector<TimelineStep> steps;
    const bool repeat;
    const Apply apply;
    Mutex mutex;
    std::condition_variable_any changed;
    bool stopping GUARDED_BY(mutex) = false;
    std::thread thread;
};

}  // namespace ZrSimulator
