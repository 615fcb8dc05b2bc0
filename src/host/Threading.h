#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include "host/Context.h"

namespace ZrHmiSrv {

/// The code that a timer hands to its callback.
enum class TimerError : int { none = 0, aborted = 1 };

/// A pool of worker threads with timers. Thread-safe.
class ZRHMISRV_API Threading {
public:
    using TimerCallback = std::function<void(TimerError error, const Context& context)>;

    explicit Threading(std::size_t threads);
    /// Stops the pool and joins its workers, however long their callbacks take. Not from a worker.
    ~Threading();
    Threading(const Threading&) = delete;
    Threading& operator=(const Threading&) = delete;

    /// Calls back once on a worker: after the delay with `none`, or with `aborted` as soon as the
    /// pool stops. On a stopped pool nothing is scheduled and false is returned. An exception
    /// that leaves a callback ends that callback alone.
    bool schedule(std::size_t delay_milliseconds, const Context& context, TimerCallback callback);
    /// The same again and again, one call at a time, and once with `aborted` when the pool stops.
    /// What a call takes too long is skipped, not caught up. Nothing is allocated between two
    /// calls, so that nothing but the end of the pool ends the timer.
    bool schedule_periodic(std::size_t period_milliseconds, const Context& context,
                           TimerCallback callback);

    /// Aborts the timers and waits at most that long for running callbacks. False when one is
    /// still running then; it is joined by the destructor. Idempotent; from a worker it does not
    /// wait for that worker.
    bool stop(std::size_t milliseconds);

private:
    class WorkerPool;
    std::unique_ptr<WorkerPool> pool;
};

}  // namespace ZrHmiSrv
