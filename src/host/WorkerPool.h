#pragma once

#include <cstddef>
#include <list>
#include <set>
#include <vector>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
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

    bool schedule(std::size_t delay_milliseconds, const Context& context, TimerCallback&& callback)
        EXCLUDES(mutex);
    bool stop(std::size_t milliseconds) EXCLUDES(mutex);
    /// Stops and joins the workers, however long that takes. Must come before the destructor.
    void shut_down() EXCLUDES(mutex);

private:
    struct Timer {
        boost::asio::steady_timer expiry;
        Context context;
        TimerCallback callback;
    };
    using Timers = std::list<Timer>;

    void work() EXCLUDES(mutex);
    void call_back(Timers::iterator timer) EXCLUDES(mutex);
    void begin_stop() REQUIRES(mutex);
    bool must_wait(bool is_worker) const REQUIRES(mutex);

    boost::asio::io_context io;
    Mutex mutex;
    boost::condition_variable_any workers_changed;
    /// Keeps the workers running until the pool stops.
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_guard
        GUARDED_BY(mutex);
    bool stopped GUARDED_BY(mutex) = false;
    Timers timers GUARDED_BY(mutex);        ///< those that were not called back yet
    std::size_t running GUARDED_BY(mutex);  ///< workers that have not ended
    /// Workers that called `stop` and have not ended: other workers do not wait for them.
    std::set<boost::thread::id> stoppers GUARDED_BY(mutex);
    std::vector<boost::thread> workers;  ///< constant after construction
};

}  // namespace ZrHmiSrv
