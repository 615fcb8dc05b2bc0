#pragma once

#include <chrono>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Mutex.h"
#include "targetsystem/Keeper.h"
#include "targetsystem/TargetSystem.h"

namespace ZrHmiEventLogger {

/// The configured target systems by name, each with its keeper, and the keepers of those that have
/// left while one of their calls hung. Any thread.
class TargetSystems {
public:
    using Pointer = std::shared_ptr<TargetSystem>;
    using TimePoint = Keeper::TimePoint;

    struct Kept {
        Pointer target;
        std::shared_ptr<Keeper> keeper;
        explicit operator bool() const { return target != nullptr; }
    };

    Pointer find(std::string_view name) const EXCLUDES(targetSystemsMutex);
    /// In order of name.
    std::vector<Kept> copy() const EXCLUDES(targetSystemsMutex);

    /// Puts a target system in the place of the former one of its name, which the caller has to
    /// retire. Once closed, the given one is handed back instead.
    Kept exchange(const Kept& added) EXCLUDES(targetSystemsMutex);
    /// Takes one out, to be retired by the caller.
    Kept remove(std::string_view name) EXCLUDES(targetSystemsMutex);
    /// Takes out all, to be retired by the caller; nothing enters any more.
    std::vector<Kept> close() EXCLUDES(targetSystemsMutex);

    /// Retires them side by side and returns when all have ended, or at the deadline. What hangs
    /// then ends by itself, unheard.
    void retire(std::vector<Kept> retiring, TimePoint deadline) EXCLUDES(leavingMutex);
    /// Closes, retires what is left, and returns when every keeper has ended.
    void join() EXCLUDES(targetSystemsMutex, leavingMutex);

private:
    /// Handed on without a failure.
    using Keepers = std::list<std::shared_ptr<Keeper>>;
    void keepUntilTheEnd(Keepers late) noexcept EXCLUDES(leavingMutex);

    mutable Mutex targetSystemsMutex;  ///< guards the map; nothing is called or destroyed under it
    std::map<std::string, Kept, std::less<>> targetSystems GUARDED_BY(targetSystemsMutex);
    bool closed GUARDED_BY(targetSystemsMutex) = false;
    Mutex leavingMutex;  ///< guards the keepers that were late; nothing is called under it
    Keepers leaving GUARDED_BY(leavingMutex);
};

}  // namespace ZrHmiEventLogger
