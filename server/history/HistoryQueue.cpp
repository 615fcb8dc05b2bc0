#include "server/history/HistoryQueue.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace hmi {

bool HistoryQueue::push(HistoryItem item) noexcept {
    Lock lock(mutex);
    try {
        if (waiting.size() < capacity) {
            waiting.push_back(std::move(item));
            if (waiting.size() == 1) {
                since = Clock::now();
                changed.notify_all();
            } else if (waiting.size() == batchSize) {
                changed.notify_all();
            }
            return true;
        }
    } catch (const std::bad_alloc&) {
    }
    addLoss(1);
    return false;
}

void HistoryQueue::addLoss(std::uint64_t count) {
    const auto now = ZrHmiSrv::Timestamp::now();
    if (loss.count == 0)
        loss.from = now;
    loss.to = now;
    loss.count += count;
    allLost += count;
    isLosing = true;
}

void HistoryQueue::lose(std::uint64_t count) {
    Lock lock(mutex);
    addLoss(count);
}

HistoryQueue::Batch HistoryQueue::take() {
    constexpr std::chrono::seconds patience{1};
    const auto end = Clock::now() + patience;
    Lock lock(mutex);
    taken = 0;
    while (waiting.empty() && !stopping &&
           changed.wait_until(lock, end) != std::cv_status::timeout) {
    }
    while (!waiting.empty() && waiting.size() < batchSize && !stopping &&
           changed.wait_until(lock, Clock::time_point(since + gatherTime)) !=
               std::cv_status::timeout) {
    }
    const std::size_t count = std::min(waiting.size(), largestBatch);
    const auto last = waiting.begin() + static_cast<std::ptrdiff_t>(count);
    Batch batch;
    batch.items.assign(std::make_move_iterator(waiting.begin()), std::make_move_iterator(last));
    waiting.erase(waiting.begin(), last);
    taken = count;
    batch.isAll = waiting.empty();
    batch.isLast = stopping && batch.isAll;
    if (loss.count > 0 && !std::exchange(isLosing, false))
        batch.loss = std::exchange(loss, {});
    return batch;
}

bool HistoryQueue::sleep(std::chrono::milliseconds time) {
    const auto end = Clock::now() + time;
    Lock lock(mutex);
    while (!stopping && changed.wait_until(lock, end) != std::cv_status::timeout) {
    }
    return !stopping;
}

void HistoryQueue::stop() {
    Lock lock(mutex);
    stopping = true;
    changed.notify_all();
}

std::size_t HistoryQueue::size() const {
    Lock lock(mutex);
    return waiting.size() + taken;
}

std::uint64_t HistoryQueue::lost() const {
    Lock lock(mutex);
    return allLost;
}

}  // namespace hmi
