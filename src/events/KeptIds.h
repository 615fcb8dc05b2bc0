#pragma once

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

#include "events/EventStore.h"

namespace ZrHmiEventLogger {

/// The host ids of the alarms that lived when an import began. Each is given once.
class KeptIds {
public:
    /// Of several with one key, the first is the first to be given.
    explicit KeptIds(std::vector<LiveAlarmId> former);

    std::optional<int> take(const ZrEventLoggerFnxProxyLib::IZrAlarm* object);
    std::optional<int> take(const AlarmKey& key);
    std::size_t taken() const { return takenCount; }

private:
    struct SameKey {
        std::vector<std::size_t> indices;
        std::size_t next = 0;  ///< those before are taken
    };

    std::optional<int> take(std::size_t index);

    const std::vector<LiveAlarmId> former;
    std::vector<bool> isTaken;
    std::size_t takenCount = 0;
    std::unordered_map<const ZrEventLoggerFnxProxyLib::IZrAlarm*, std::size_t> byObject;
    std::unordered_map<AlarmKey, SameKey> byKey;
};

}  // namespace ZrHmiEventLogger
