#include "server/confirmations/Deadlines.h"

#include <utility>

namespace hmi {

Deadlines::Deadlines() : thread([this] { run(); }) {}

Deadlines::~Deadlines() {
    {
        Lock lock(mutex);
        stopping = true;
        changed.notify_all();
    }
    thread.join();
}

bool Deadlines::add(Clock::time_point end, std::function<void()> expire) {
    Lock lock(mutex);
    if (awaited.size() >= maxAwaited)
        return false;
    awaited.emplace(end, std::move(expire));
    changed.notify_all();
    return true;
}

void Deadlines::run() {
    Lock lock(mutex);
    while (!stopping) {
        if (awaited.empty()) {
            changed.wait(lock);
        } else if (const auto next = awaited.begin()->first; Clock::now() < next) {
            changed.wait_until(lock, next);
        } else {
            auto due = awaited.extract(awaited.begin());
            lock.unlock();
            due.mapped()();
            due = {};
            lock.lock();
        }
    }
}

}  // namespace hmi
