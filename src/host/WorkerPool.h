#pragma once

#include <cstddef>
#include <list>
#include <set>
#include <vector>

#include <boost/chrono/system_clocks.hpp>
#include <boost/thread/condition_variable.hpp>
#include <boost/thread/thread.hpp>

#include "host/Threading.h"
#include "platform/Mutex.h"

namespace ZrHmiSrv {

/// The workers and timers behind `Threading`. No lock is held while a callback runs or is
/// destroyed.
class Threading::WorkerPool {
public:
    explicit WorkerPool(std::size_t threads);  ///< at least one
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// A period of 0: once.
    bool schedule(std::size_t delay_milliseconds, std::size_t period_milliseconds,
                  const Context& context, TimerCallback&& callback) EXCLUDES(mutex);
    bool stop(std::size_t milliseconds) EXCLUDES(mutex);
    /// Stops and joins the workers, however long that takes. Must come before the destructor.
    void shut_down() EXCLUDES(mutex);

private:
    using Clock = boost::chrono::steady_clock;
    struct Timer {
        Clock::time_point due;
        Clock::duration period;  ///< 0: called back once
        Context context;
        TimerCallback callback;
    };
    using Timers = std::list<Timer>;

    void work() EXCLUDES(mutex);
    /// Waits for a timer that is due, or any when the pool has stopped. Empty: there are none, and
    /// there will be none.
    Timers await_due() EXCLUDES(mutex);
    void run(Timers& due) EXCLUDES(mutex);
    void insert(Timers& added) REQUIRES(mutex);
    bool must_wait(bool from_worker) const REQUIRES(mutex);

    Mutex mutex;
    boost::condition_variable_any changed;
    bool stopped GUARDED_BY(mutex) = false;
    Timers timers GUARDED_BY(mutex);        ///< those that wait, the next one first
    std::size_t running GUARDED_BY(mutex);  ///< workers that have not ended
    /// Workers that called `stop` and have not ended: other workers do not wait for them.
    std::set<boost::thread::id> stoppers GUARDED_BY(mutex);
    std::vector<boost::thread> workers;  ///< constant after construction
};

}  // namespace ZrHmiSrv
