#include "server/events/KnownEvents.h"

#include <utility>

namespace hmi {

using ZrHmiSrv::Value;

namespace {

bool isUnchanged(const EventRecord& known, const EventRecord& handedOver) {
    return !known.lastKnownSince.isset() && known.life == handedOver.life &&
           known.position.time == handedOver.position.time &&
           Value(known.event()) == Value(handedOver.event());
}

}  // namespace

KnownEvents::KnownEvents(const std::vector<EventRecordPtr>& held) {
    for (const EventRecordPtr& event : held) {
        if (event->kind == EventKind::alarm)
            alarms.emplace(event->id.number, event);
        else
            messages.emplace(event->contentHash(), event);
    }
}

EventRecordPtr KnownEvents::meet(EventContent content, std::uint64_t arrival) {
    auto handedOver = std::make_shared<const EventRecord>(std::move(content), arrival);
    EventRecordPtr known = take(*handedOver);
    if (!known)
        return handedOver;
    if (isUnchanged(*known, *handedOver))
        return known;
    const auto record = std::make_shared<EventRecord>(handedOver->content, known->position.arrival);
    record->confirmation = confirmationOf(*record, *known);
    return record;
}

EventRecordPtr KnownEvents::take(const EventRecord& handedOver) {
    if (handedOver.kind == EventKind::alarm) {
        const auto node = alarms.extract(handedOver.id.number);
        return node ? node.mapped() : nullptr;
    }
    const auto [first, last] = messages.equal_range(handedOver.contentHash());
    for (auto found = first; found != last; ++found) {
        if (isSameMessage(*found->second, handedOver))
            return messages.extract(found).mapped();
    }
    return nullptr;
}

}  // namespace hmi
