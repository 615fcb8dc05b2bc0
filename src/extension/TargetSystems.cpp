#include "extension/TargetSystems.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace ZrHmiEventLogger {

void TargetSystems::join() {
    retire(close(), TimePoint::max());
    Keepers late;
    {
        Lock lock(leavingMutex);
        late.swap(leaving);
    }
}

TargetSystems::Pointer TargetSystems::find(std::string_view name) const {
    Lock lock(targetSystemsMutex);
    const auto found = targetSystems.find(name);
    return found == targetSystems.end() ? nullptr : found->second.target;
}

std::vector<TargetSystems::Kept> TargetSystems::copy() const {
    std::vector<Kept> all;
    Lock lock(targetSystemsMutex);
    all.reserve(targetSystems.size());
    for (const auto& [name, kept] : targetSystems)
        all.push_back(kept);
    return all;
}

TargetSystems::Kept TargetSystems::exchange(const Kept& added) {
    std::string name(added.target->name().view());
    Lock lock(targetSystemsMutex);
    if (closed)
        return added;
    return std::exchange(targetSystems[std::move(name)], added);
}

TargetSystems::Kept TargetSystems::remove(std::string_view name) {
    Lock lock(targetSystemsMutex);
    const auto found = targetSystems.find(name);
    return found == targetSystems.end() ? Kept()
                                        : std::move(targetSystems.extract(found).mapped());
}

std::vector<TargetSystems::Kept> TargetSystems::close() {
    decltype(targetSystems) leaving;
    {
        Lock lock(targetSystemsMutex);
        closed = true;
        leaving.swap(targetSystems);
    }
    std::vector<Kept> all;
    all.reserve(leaving.size());
    for (auto& [name, kept] : leaving)
        all.push_back(std::move(kept));
    return all;
}

void TargetSystems::retire(std::vector<Kept> retiring, TimePoint deadline) {
    for (const Kept& kept : retiring)
        kept.keeper->retire(deadline);
    Keepers late;
    for (Kept& kept : retiring) {
        kept.target.reset();
        if (!kept.keeper->awaitEnd(deadline))
            late.push_back(std::move(kept.keeper));
    }
    keepUntilTheEnd(std::move(late));
}

void TargetSystems::keepUntilTheEnd(Keepers late) {
    Keepers over;  // destroyed outside the lock
    Lock lock(leavingMutex);
    const auto ended = std::partition(leaving.begin(), leaving.end(), [](const auto& keeper) {
        return !keeper->awaitEnd(TimePoint());
    });
    std::move(ended, leaving.end(), std::back_inserter(over));
    leaving.erase(ended, leaving.end());
    std::move(late.begin(), late.end(), std::back_inserter(leaving));
}

}  // namespace ZrHmiEventLogger
