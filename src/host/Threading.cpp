#include "host/Threading.h"

#include <algorithm>
#include <utility>

#include "host/WorkerPool.h"

namespace ZrHmiSrv {

Threading::Threading(std::size_t threads)
    : pool(std::make_unique<WorkerPool>(std::max<std::size_t>(threads, 1))) {}

// Running callbacks may still call this object, so it must be whole until the last has ended.
Threading::~Threading() {
    pool->shut_down();
}

bool Threading::schedule(std::size_t delay_milliseconds, const Context& context,
                         TimerCallback callback) {
    return pool->schedule(delay_milliseconds, 0, context, std::move(callback));
}

bool Threading::schedule_periodic(std::size_t period_milliseconds, const Context& context,
                                  TimerCallback callback) {
    const std::size_t period = std::max<std::size_t>(period_milliseconds, 1);
    return pool->schedule(period, period, context, std::move(callback));
}

bool Threading::stop(std::size_t milliseconds) {
    return pool->stop(milliseconds);
}

}  // namespace ZrHmiSrv
