#pragma once

#include <chrono>
#include <condition_variable>
#include <optional>
#include <thread>

#include "platform/Mutex.h"
#include "server/events/Change.h"

namespace hmi {

/// Tells the readers that it pays to ask for texts again, but not for each text anew. Thread-safe.
class TextNews {
public:
    explicit TextNews(IChangeSink& sink) : sink(sink), thread([this] { run(); }) {}
    ~TextNews() { stop(); }

    /// Tells it after that time; sooner when that has been asked for as well.
    void tellWithin(std::chrono::milliseconds delay);
    /// Nothing is told any more when it returns. From one thread.
    void stop();

private:
    using Clock = std::chrono::steady_clock;
    void run();

    IChangeSink& sink;
    Mutex mutex;  ///< guards what stands below; the sink is not called under it
    std::condition_variable_any changed;
    std::optional<Clock::time_point> due GUARDED_BY(mutex);
    bool stopping GUARDED_BY(mutex) = false;
    std::thread thread;
};

}  // namespace hmi
