#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "server/events/EventRecord.h"

namespace hmi {

/// The events under which readers know what a target system now hands over again. Used by one
/// thread.
class KnownEvents {
public:
    explicit KnownEvents(const std::vector<EventRecordPtr>& held);

    /// The known record when nothing about it has changed. Otherwise a new one, at the place and
    /// with the id of the known one, or with this arrival. Each known event is met once: of equal
    /// messages every copy has its own.
    EventRecordPtr meet(EventContent content, std::uint64_t arrival);

private:
    EventRecordPtr take(const EventRecord& handedOver);

    std::unordered_map<std::int64_t, EventRecordPtr> alarms;        ///< by id
    std::unordered_multimap<std::size_t, EventRecordPtr> messages;  ///< by hash of their content
};

}  // namespace hmi
