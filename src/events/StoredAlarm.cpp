#include "events/StoredAlarm.h"

namespace ZrHmiEventLogger {

EventStore::Container::Entry* findUnsettled(const EventStore::Container& events,
                                            const std::optional<UnsettledAlarm>& alarm) {
    if (!alarm)
        return nullptr;
    return events.findInGroup(alarm->key.timeRaised.nanoseconds(), [&](const auto& entry) {
        return alarmOf(entry).id() == alarm->hostId;
    });
}

}  // namespace ZrHmiEventLogger
