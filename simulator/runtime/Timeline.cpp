#include "simulator/runtime/Timeline.h"

#include <utility>

namespace ZrSimulator {

Timeline::Timeline(std::vector<TimelineStep> steps, bool repeat, Apply apply)
    : steps(std::move(steps)), repeat(repeat), apply(std::move(apply)), thread([this] { run(); }) {}

Timeline::~Timeline() {
    {
        Lock lock(mutex);
        stopping = true;
    }
    changed.notify_one();
    thread.join();
}

void Timeline::run() {
    do {
        for (const auto& step : steps) {
            if (!waitFor(step.after))
                return;
            apply(step.action);
        }
    } while (repeat);
}

bool Timeline::waitFor(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    Lock lock(mutex);
    while (!stopping && std::chrono::steady_clock::now() < end)
        changed.wait_until(lock, end);
    return !stopping;
}

}  // namespace ZrSimulator
