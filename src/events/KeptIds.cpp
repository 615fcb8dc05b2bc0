#include "events/KeptIds.h"

#include <utility>

namespace ZrHmiEventLogger {

KeptIds::KeptIds(std::vector<LiveAlarmId> alarms)
    : former(std::move(alarms)), isTaken(former.size()) {
    for (std::size_t index = 0; index < former.size(); ++index) {
        byObject.emplace(former[index].object, index);
        byKey[former[index].key].indices.push_back(index);
    }
}

std::optional<int> KeptIds::take(std::size_t index) {
    if (isTaken[index])
        return std::nullopt;
    isTaken[index] = true;
    ++takenCount;
    return former[index].hostId;
}

std::optional<int> KeptIds::take(const ZrEventLoggerFnxProxyLib::IZrAlarm* object) {
    const auto found = byObject.find(object);
    return found != byObject.end() ? take(found->second) : std::nullopt;
}

std::optional<int> KeptIds::take(const AlarmKey& key) {
    const auto found = byKey.find(key);
    if (found == byKey.end())
        return std::nullopt;
    auto& [indices, next] = found->second;
    while (next < indices.size())
        if (const auto hostId = take(indices[next++]))
            return hostId;
    return std::nullopt;
}

}  // namespace ZrHmiEventLogger
