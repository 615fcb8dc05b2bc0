#include "extension/TargetSystems.h"

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
    std::vector<Kept> all;
    Lock lock(targetSystemsMutex);
    closed = true;
    // All that can fail comes before the first of them leaves.
    all.reserve(targetSystems.size());
    for (auto& [name, kept] : targetSystems)
        all.push_back(std::move(kept));
    targetSystems.clear();
    return all;
}

void TargetSystems::retire(std::vector<Kept> retiring, TimePoint deadline) {
    // First what can fail: a keeper that is late must not be lost, as its destructor waits.
    Keepers keepers;
    for (const Kept& kept : retiring)
        keepers.push_back(kept.keeper);
    for (const auto& keeper : keepers)
        keeper->retire(deadline);
    retiring.clear();
    keepers.remove_if([&](const auto& keeper) { return keeper->awaitEnd(deadline); });
    keepUntilTheEnd(std::move(keepers));
}

void TargetSystems::keepUntilTheEnd(Keepers late) noexcept {
    Keepers over;  // destroyed outside the lock
    Lock lock(leavingMutex);
    for (auto keeper = leaving.begin(); keeper != leaving.end();) {
        const auto current = keeper++;
        if ((*current)->awaitEnd(TimePoint()))
            over.splice(over.end(), leaving, current);
    }
    leaving.splice(leaving.end(), late);
}

}  // namespace ZrHmiEventLogger
