/// The extension's map of target systems.
#include <utility>

#include "extension/ZrHmiEventLogger.h"
#include "targetsystem/TargetSystemPlatformSpecific.h"

namespace ZrHmiEventLogger {

ZrHmiEventLogger::TargetSystemPointer ZrHmiEventLogger::createTargetSystem(
    const TargetSystemConfiguration& configured, ZrHmiSrv::Timespan timeout,
    std::int64_t eventLimit) {
    return TargetSystemPlatformSpecific<TargetSystem>::make(
        TargetSystemSettings{configured.name, fullAddress(configured), configured.enabled, timeout,
                             eventLimit},
        context.domain(), *this, stopping, sharedState);
}

std::string ZrHmiEventLogger::fullAddress(const TargetSystemConfiguration& configured) {
    Lock lock(localAddressMutex);
    if (localAddress.empty())
        localAddress = readLocalAddress();
    return resolveAddress(configured.address, localAddress);
}

ZrHmiEventLogger::TargetSystemPointer ZrHmiEventLogger::findTargetSystem(
    std::string_view name) const {
    Lock lock(targetSystemsMutex);
    const auto found = targetSystems.find(name);
    return found == targetSystems.end() ? nullptr : found->second;
}

std::vector<ZrHmiEventLogger::TargetSystemPointer> ZrHmiEventLogger::copyTargetSystems() const {
    std::vector<TargetSystemPointer> copy;
    Lock lock(targetSystemsMutex);
    copy.reserve(targetSystems.size());
    for (const auto& [name, target] : targetSystems)
        copy.push_back(target);
    return copy;
}

ZrHmiEventLogger::TargetSystemPointer ZrHmiEventLogger::exchangeTargetSystem(
    std::string_view name, TargetSystemPointer target) {
    Lock lock(targetSystemsMutex);
    const auto found = targetSystems.find(name);
    TargetSystemPointer former;
    if (found != targetSystems.end()) {
        former = std::exchange(found->second, target);
        if (!target)
            targetSystems.erase(found);
    } else if (target) {
        targetSystems.emplace(name, std::move(target));
    }
    return former;
}

void ZrHmiEventLogger::clearTargetSystems() {
    TargetSystemMap leaving;
    {
        Lock lock(targetSystemsMutex);
        leaving.swap(targetSystems);
    }
    for (const auto& [name, target] : leaving)
        target->retire();
}

}  // namespace ZrHmiEventLogger
