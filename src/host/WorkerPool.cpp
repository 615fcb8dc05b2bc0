#include "host/WorkerPool.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <utility>

#include <boost/chrono/system_clocks.hpp>

#include "host/ApiHost.h"
#include "host/IZrHmiSrvExtHost.h"

namespace ZrHmiSrv {

namespace {

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

Threading::WorkerPool::WorkerPool(std::size_t threads)
    : work_guard(io.get_executor()), running(threads) {
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
        begin_stop();
    }
    for (boost::thread& worker : workers)
        worker.join();
}

bool Threading::WorkerPool::schedule(std::size_t delay_milliseconds, const Context& context,
                                     TimerCallback&& callback) {
    const std::chrono::milliseconds delay(bounded(delay_milliseconds));
    Timers added;
    added.push_back({boost::asio::steady_timer(io, delay), context, std::move(callback)});
    const auto timer = added.begin();

    Lock lock(mutex);
    if (stopped)
        return false;
    timer->expiry.async_wait([this, timer](const boost::system::error_code&) { call_back(timer); });
    timers.splice(timers.end(), added);
    return true;
}

bool Threading::WorkerPool::stop(std::size_t milliseconds) {
    const auto deadline =
        boost::chrono::steady_clock::now() + boost::chrono::milliseconds(bounded(milliseconds));
    const bool is_worker = io.get_executor().running_in_this_thread();

    Lock lock(mutex);
    begin_stop();
    if (is_worker) {
        stoppers.insert(boost::this_thread::get_id());
        workers_changed.notify_all();
    }
    bool in_time = true;
    while (in_time && must_wait(is_worker))
        in_time = workers_changed.wait_until(lock, deadline) == boost::cv_status::no_timeout;
    return !must_wait(is_worker);
}

bool Threading::WorkerPool::must_wait(bool is_worker) const {
    return running > (is_worker ? stoppers.size() : 0);
}

void Threading::WorkerPool::begin_stop() {
    if (std::exchange(stopped, true))
        return;
    for (Timer& timer : timers)
        timer.expiry.cancel();
    work_guard.reset();
}

void Threading::WorkerPool::work() {
    io.run();
    Lock lock(mutex);
    --running;
    stoppers.erase(boost::this_thread::get_id());
    workers_changed.notify_all();
}

void Threading::WorkerPool::call_back(Timers::iterator timer) {
    Timers ended;
    bool aborted = false;
    {
        Lock lock(mutex);
        ended.splice(ended.end(), timers, timer);
        aborted = stopped;
    }
    try {
        timer->callback(aborted ? TimerError::aborted : TimerError::none, timer->context);
    } catch (const std::exception& exception) {
        report_failure(timer->context, exception.what());
    } catch (...) {
        report_failure(timer->context, "unknown exception");
    }
}

}  // namespace ZrHmiSrv
