#include "server/lanes/CappedLane.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

#include "server/Log.h"

namespace hmi {

namespace {

const std::string stopping = "the server is stopping";

}  // namespace

CappedLane::~CappedLane() {
    stop();
    join();
}

void CappedLane::run(const std::string& target, Work work) {
    Lock lock(mutex);
    const auto queue = queues.try_emplace(target).first;
    const std::string reason = reasonToRefuse(*queue);
    if (reason.empty()) {
        queue->second.waiting.push_back(std::move(work));
        ++used.waiting;
        return offer(queue);
    }
    ++used.refused;
    release(queue);
    lock.unlock();
    work.refuse(reason);
}

std::string CappedLane::reasonToRefuse(const Queues::value_type& queue) const {
    const auto& [target, work] = queue;
    if (stopped)
        return stopping;
    if (work.waiting.size() >= limits.waiting)
        return (target.empty() ? "the server" : "target system " + target) +
               " is busy: " + std::to_string(work.running) + " " + name + " are under way and " +
               std::to_string(work.waiting.size()) + " wait; try again later";
    // Whoever has nothing waiting is not refused for what others have.
    if (used.waiting >= limits.allWaiting && !work.waiting.empty())
        return "the server is busy: " + std::to_string(used.waiting) + " " + name +
               " wait; try again later";
    return {};
}

void CappedLane::offer(Queues::iterator queue) {
    Queue& work = queue->second;
    if (stopped || work.isReady || work.waiting.empty() || work.running >= limits.running)
        return;
    work.isReady = true;
    ready.push_back(queue);
    if (ready.size() > idle && threads.size() < limits.threads)
        addThread();
    wake.notify_one();
}

/// Without another thread the work waits for those that there are.
void CappedLane::addThread() {
    try {
        threads.emplace_back([this] { serve(); });
    } catch (const std::system_error& error) {
        if (threads.empty())
            throw;
        log(LogLevel::warning, "no more threads for " + name + ": " + error.what());
    }
}

void CappedLane::serve() {
    Lock lock(mutex);
    while (true) {
        ++idle;
        while (ready.empty() && !stopped)
            wake.wait(lock);
        --idle;
        if (stopped)
            return;
        const auto queue = ready.front();
        ready.pop_front();
        Work work = take(queue);
        lock.unlock();
        work.run();
        work = {};
        lock.lock();
        --queue->second.running;
        --used.running;
        release(queue);
    }
}

Work CappedLane::take(Queues::iterator queue) {
    Queue& from = queue->second;
    from.isReady = false;
    Work work = std::move(from.waiting.front());
    from.waiting.pop_front();
    --used.waiting;
    ++from.running;
    ++used.running;
    offer(queue);
    return work;
}

void CappedLane::release(Queues::iterator queue) {
    offer(queue);
    if (queue->second.waiting.empty() && queue->second.running == 0)
        queues.erase(queue);
}

void CappedLane::stop() {
    std::vector<Work> refused;
    {
        Lock lock(mutex);
        stopped = true;
        ready.clear();
        for (auto& [target, queue] : queues) {
            std::move(queue.waiting.begin(), queue.waiting.end(), std::back_inserter(refused));
            queue.waiting.clear();
        }
        used.waiting = 0;
        used.refused += refused.size();
        wake.notify_all();
    }
    for (Work& work : refused)
        work.refuse(stopping);
}

void CappedLane::join() {
    std::vector<std::thread> ending;
    {
        Lock lock(mutex);
        ending.swap(threads);
    }
    for (std::thread& thread : ending)
        thread.join();
}

CappedLane::Usage CappedLane::usage() const {
    Lock lock(mutex);
    return used;
}

std::map<std::string, std::size_t> CappedLane::running() const {
    std::map<std::string, std::size_t> running;
    Lock lock(mutex);
    for (const auto& [target, queue] : queues) {
        if (queue.running > 0)
            running[target] = queue.running;
    }
    return running;
}

}  // namespace hmi
