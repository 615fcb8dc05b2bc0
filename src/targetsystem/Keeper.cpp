#include "targetsystem/Keeper.h"

#include <utility>

namespace ZrHmiEventLogger {

Keeper::Keeper(std::shared_ptr<TargetSystem> target, Stale stale)
    : kept(target),
      stale(std::move(stale)),
      thread([this, target = std::move(target)]() mutable { run(std::move(target)); }) {}

Keeper::~Keeper() {
    retire(TimePoint::max());
    thread.join();
}

void Keeper::begin(bool connect) {
    Lock lock(mutex);
    begun = true;
    connects = connect;
    changed.notify_all();
}

void Keeper::wake() {
    Lock lock(mutex);
    if (!idle)
        return;
    woken = true;
    changed.notify_all();
}

void Keeper::retire(TimePoint until) {
    {
        Lock lock(mutex);
        if (std::exchange(retiring, true))
            return;
        deadline = until;
        changed.notify_all();
    }
    if (const auto target = kept.lock())
        target->beginRetiring(until);
}

void Keeper::run(std::shared_ptr<TargetSystem> target) {
    prepare(*target);
    for (Work work = next(); work != Work::retire; work = next())
        keep(*target, work);
    TimePoint until;
    {
        Lock lock(mutex);
        until = deadline;
    }
    target->firstAttempt().reach();
    target->retire(until);
    target.reset();
    ended.reach();
}

void Keeper::prepare(TargetSystem& target) {
    try {
        target.prepare();
    } catch (...) {
        refused = true;
        target.reportFailure();
    }
    prepared.reach();
}

Keeper::Work Keeper::next() {
    Lock lock(mutex);
    woken = false;
    idle = begun;
    while (!retiring && !(begun && ((connects && !refused) || woken))) {
        changed.wait(lock);
        idle = begun;
    }
    idle = false;
    if (retiring)
        return Work::retire;
    return std::exchange(connects, false) ? Work::connect : Work::check;
}

void Keeper::keep(TargetSystem& target, Work work) {
    try {
        target.prepare();
        ImportResultPtr released;
        bool changedForHost = false;
        if (work == Work::connect) {
            target.Connect(released);
            changedForHost = target.takeStale();
        } else {
            changedForHost = target.CheckConnection(released);
        }
        if (changedForHost && !target.isRetired())
            stale();
    } catch (...) {
        target.firstAttempt().reach();
        target.reportFailure();
    }
}

}  // namespace ZrHmiEventLogger
