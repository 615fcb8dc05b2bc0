#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <thread>

#include "platform/Mutex.h"
#include "targetsystem/Milestone.h"
#include "targetsystem/TargetSystem.h"

namespace ZrHmiEventLogger {

/// Keeps one target system connected, on a thread of its own: prepares, connects, imports, checks
/// and finally retires it, one at a time. So a target that hangs keeps only its own keeper waiting.
/// Any thread may call; nothing but the destructor waits for a call of the target.
class Keeper {
public:
    using TimePoint = TargetSystem::TimePoint;
    /// Called on the keeper whenever the host's events of the target have become stale.
    using Stale = std::function<void()>;

    /// Prepares the target, then idle until `begin`. Throws std::system_error when there is no
    /// thread to be had.
    Keeper(std::shared_ptr<TargetSystem> target, Stale stale);
    /// Retires the target and joins the thread, however long that takes.
    ~Keeper();
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;

    /// Whether the target has been prepared by then, or cannot be, which has been told.
    bool awaitPrepared(TimePoint time) { return prepared.waitUntil(time); }
    /// The target could not be prepared. That is tried again with every check, the first of which
    /// a `wake` begins.
    bool isRefused() const { return refused; }
    /// Connects at once, or leaves that to the first `wake`.
    void begin(bool connect) EXCLUDES(mutex);
    /// Has the target checked, unless it is being worked on.
    void wake() EXCLUDES(mutex);
    /// From now on the target tells the host nothing; it is unsubscribed and disconnected by the
    /// keeper as soon as its running call is over. The logger is disconnected only before the
    /// deadline. Once is enough: the first deadline counts.
    void retire(TimePoint deadline) EXCLUDES(mutex);
    /// Whether that is done by then.
    bool awaitEnd(TimePoint time) { return ended.waitUntil(time); }

private:
    enum class Work { connect, check, retire };

    void run(std::shared_ptr<TargetSystem> target);
    void prepare(TargetSystem& target);
    Work next() EXCLUDES(mutex);
    void keep(TargetSystem& target, Work work);

    const std::weak_ptr<TargetSystem> kept;
    const Stale stale;
    Milestone prepared;
    std::atomic<bool> refused = false;
    Milestone ended;
    Mutex mutex;  ///< guards what is to be done; nothing is called under it
    std::condition_variable_any changed;
    bool begun GUARDED_BY(mutex) = false;
    bool connects GUARDED_BY(mutex) = false;
    bool idle GUARDED_BY(mutex) = false;
    bool woken GUARDED_BY(mutex) = false;
    bool retiring GUARDED_BY(mutex) = false;
    TimePoint deadline GUARDED_BY(mutex);
    std::thread thread;  ///< last: it uses all of the above
};

}  // namespace ZrHmiEventLogger
