#pragma once

#include <functional>
#include <memory>

#include "server/http/Router.h"

namespace hmi {

/// The threads that serve requests. Calls of the extension have threads of their own, so that
/// however many of them hang, reading the lists goes on.
class WorkerLanes {
public:
    WorkerLanes();
    ~WorkerLanes();

    /// Any thread. The work must not throw.
    void run(Lane lane, std::function<void()> work);
    /// Returns when all work is done; nothing may be added any more.
    void join();

private:
    struct Threads;
    std::unique_ptr<Threads> threads;
};

}  // namespace hmi
