#include "server/events/EventFilter.h"

namespace hmi {

namespace {

bool isIn(EventState state, const EventShape& event) {
    switch (state) {
        case EventState::active:
            return event.life == EventLife::active;
        case EventState::cleared:
            return event.life == EventLife::cleared;
        case EventState::unconfirmed:
            return event.unconfirmed;
    }
    return false;
}

}  // namespace

bool EventFilter::matches(const EventShape& shape) const {
    return (!kind || *kind == shape.kind) && severity <= shape.severity &&
           (!state || isIn(*state, shape));
}

bool EventFilter::matches(const EventRecord& event) const {
    return matches(static_cast<const EventShape&>(event)) &&
           (!target || *target == event.target) && (!from || *from <= event.position.time) &&
           (!to || event.position.time <= *to);
}

bool EventFilter::isBefore(const EventRecord& a, const EventRecord& b) const {
    return reversed ? isInOrder(b, a) : isInOrder(a, b);
}

bool EventFilter::isInOrder(const EventRecord& a, const EventRecord& b) const {
    if (order == EventOrder::priority && a.priority != b.priority)
        return a.priority < b.priority;
    if (order == EventOrder::target && a.target != b.target)
        return a.target < b.target;
    if (order == EventOrder::severity && a.severity != b.severity)
        return a.severity != noSeverity && (b.severity == noSeverity || b.severity < a.severity);
    return a.position < b.position;
}

}  // namespace hmi
