#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "platform/Mutex.h"

namespace hmi {

/// One of the two is called, once, on any thread. Neither throws.
struct Work {
    std::function<void()> run;
    std::function<void(const std::string& why)> refuse;
};

/// Threads for one kind of work, of which no target system can take more than its share: beyond
/// that its work waits in a queue of its own, and what the queue cannot hold is refused at once.
/// Threads are made when all others are busy, up to a maximum, and stay. Thread-safe.
class CappedLane {
public:
    struct Limits {
        std::size_t threads;
        std::size_t running;     ///< at the same time, for one target system
        std::size_t waiting;     ///< for one target system
        std::size_t allWaiting;  ///< for all of them, beside one of each
    };
    struct Usage {
        std::size_t running = 0;
        std::size_t waiting = 0;
        std::uint64_t refused = 0;
    };

    /// `name` is for people: what the work is, in the plural.
    CappedLane(std::string name, Limits limits) : name(std::move(name)), limits(limits) {}
    ~CappedLane();

    void run(const std::string& target, Work work);
    /// Refuses what waits, and everything from now on.
    void stop();
    /// Returns when nothing runs any more; after `stop`.
    void join();

    Usage usage() const;
    /// How much runs, by target system.
    std::map<std::string, std::size_t> running() const;

    const std::string name;

private:
    struct Queue {
        std::deque<Work> waiting;
        std::size_t running = 0;
        bool isReady = false;  ///< whether it stands in `ready`
    };
    using Queues = std::map<std::string, Queue>;

    std::string reasonToRefuse(const Queues::value_type& queue) const REQUIRES(mutex);
    void offer(Queues::iterator queue) REQUIRES(mutex);
    Work take(Queues::iterator queue) REQUIRES(mutex);
    void release(Queues::iterator queue) REQUIRES(mutex);
    void addThread() REQUIRES(mutex);
    void serve();

    const Limits limits;
    mutable Mutex mutex;  ///< guards all below; no work is called under it
    std::condition_variable_any wake;
    Queues queues GUARDED_BY(mutex);                       ///< those with work only
    std::deque<Queues::iterator> ready GUARDED_BY(mutex);  ///< have work that may run, in turn
    std::vector<std::thread> threads GUARDED_BY(mutex);
    std::size_t idle GUARDED_BY(mutex) = 0;
    Usage used GUARDED_BY(mutex);
    bool stopped GUARDED_BY(mutex) = false;
};

}  // namespace hmi
