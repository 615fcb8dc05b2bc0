#include "host/WorkerPool.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <utility>

#include "host/ApiHost.h"
#include "host/IZrHmiSrvExtHost.h"

namespace ZrHmiSrv {

namespace {

/// Whose worker this thread is.
thread_local const void* current_pool = nullptr;

/// Bounded to a hundred years, which no clock arithmetic overflows with.
std::int64_t bounded(std::size_t milliseconds) noexcept {
    constexpr std::uint64_t longest = std::uint64_t{100} * 365 * 24 * 3600 * 1000;
    return static_cast<std::int64_t>(std::min<std::uint64_t>(milliseconds, longest));
}

void report_failure(const Context& context, const char* reason) noexcept {
    IZrHmiSrvExtHost* host = detail::api_host();
    if (!host)
        return;
    try {
        Message message;
        message.set_name("THREADING_TASK_FAILED");
        message.set_domain(context.domain());
        message.set_severity(Severity::unspecified);
        message.set_time_raised(Timestamp::now());
        message.parameters().insert("0", reason);
        host->send_message(context, message, false);
    } catch (...) {
        // There is nobody else to tell.
    }
}

}  // namespace

Threading::WorkerPool::WorkerPool(std::size_t threads) : running(threads) {
    try {
        workers.reserve(threads);
        while (workers.size() < threads)
            workers.emplace_back([this] { work(); });
    } catch (...) {
        shut_down();
        throw;
    }
}

void Threading::WorkerPool::shut_down() {
    {
        Lock lock(mutex);
        stopped = true;
        changed.notify_all();
    }
    for (boost::thread& worker : workers)
        worker.join();
}

bool Threading::WorkerPool::schedule(std::size_t delay_milliseconds,
                                     std::size_t period_milliseconds, const Context& context,
                                     TimerCallback&& callback) {
    using boost::chrono::milliseconds;
    Timers added;
    added.push_back({Clock::now() + milliseconds(bounded(delay_milliseconds)),
                     milliseconds(bounded(period_milliseconds)), context, std::move(callback)});
    Lock lock(mutex);
    if (stopped)
        return false;
    insert(added);
    return true;
}

void Threading::WorkerPool::insert(Timers& added) {
    const auto later = std::find_if(timers.begin(), timers.end(), [&](const Timer& timer) {
        return timer.due > added.front().due;
    });
    timers.splice(later, added);
    changed.notify_all();
}

bool Threading::WorkerPool::stop(std::size_t milliseconds) {
    const auto deadline = Clock::now() + boost::chrono::milliseconds(bounded(milliseconds));
    const bool from_worker = current_pool == this;

    Lock lock(mutex);
    stopped = true;
    if (from_worker)
        stoppers.insert(boost::this_thread::get_id());
    changed.notify_all();
    bool in_time = true;
    while (in_time && must_wait(from_worker))
        in_time = changed.wait_until(lock, deadline) == boost::cv_status::no_timeout;
    return !must_wait(from_worker);
}

bool Threading::WorkerPool::must_wait(bool from_worker) const {
    return running > (from_worker ? stoppers.size() : 0);
}

void Threading::WorkerPool::work() {
    current_pool = this;
    for (Timers due = await_due(); !due.empty(); due = await_due())
        run(due);
    Lock lock(mutex);
    --running;
    stoppers.erase(boost::this_thread::get_id());
    changed.notify_all();
}

Threading::WorkerPool::Timers Threading::WorkerPool::await_due() {
    Timers due;
    Lock lock(mutex);
    while (!stopped && (timers.empty() || timers.front().due > Clock::now())) {
        if (timers.empty())
            changed.wait(lock);
        else
            changed.wait_until(lock, Clock::time_point(timers.front().due));
    }
    if (!timers.empty())
        due.splice(due.end(), timers, timers.begin());
    return due;
}

/// `due` is the one timer that is called back. A periodic one goes back in its place.
void Threading::WorkerPool::run(Timers& due) {
    Timer& timer = due.front();
    bool aborted = false;
    {
        Lock lock(mutex);
        aborted = stopped;
    }
    try {
        timer.callback(aborted ? TimerError::aborted : TimerError::none, timer.context);
    } catch (const std::exception& exception) {
        report_failure(timer.context, exception.what());
    } catch (...) {
        report_failure(timer.context, "unknown exception");
    }
    if (aborted || timer.period == Clock::duration::zero())
        return;
    timer.due = std::max(timer.due + timer.period, Clock::now());
    Lock lock(mutex);
    insert(due);
}

}  // namespace ZrHmiSrv
