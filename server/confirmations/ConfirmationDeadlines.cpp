#include "server/confirmations/ConfirmationDeadlines.h"

#include <utility>

namespace hmi {

ConfirmationDeadlines::ConfirmationDeadlines(Expire given)
    : expire(std::move(given)), thread([this] { run(); }) {}

ConfirmationDeadlines::~ConfirmationDeadlines() {
    {
        Lock lock(mutex);
        stopping = true;
        changed.notify_all();
    }
    thread.join();
}

bool ConfirmationDeadlines::add(EventId id, std::uint64_t number, Clock::time_point end) {
    Lock lock(mutex);
    if (awaited.size() >= maxAwaited)
        return false;
    awaited.emplace(end, Awaited{id, number});
    changed.notify_all();
    return true;
}

void ConfirmationDeadlines::run() {
    Lock lock(mutex);
    while (!stopping) {
        if (awaited.empty()) {
            changed.wait(lock);
        } else if (const auto next = awaited.begin()->first; Clock::now() < next) {
            changed.wait_until(lock, next);
        } else {
            const Awaited due = awaited.extract(awaited.begin()).mapped();
            lock.unlock();
            expire(due.id, due.number);
            lock.lock();
        }
    }
}

}  // namespace hmi
