#include "server/events/EventFilter.h"

namespace hmi {

namespace {

bool isIn(EventState state, const EventRecord& event) {
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

bool EventFilter::matches(const EventRecord& event) const {
    return (!kind || *kind == event.kind) && severity <= event.severity &&
           (!state || isIn(*state, event)) && (!target || *target == event.target);
}

int EventFilter::criteria() const {
    return (target ? 1 : 0) + (kind ? 1 : 0) + (state ? 1 : 0) + (severity > 0 ? 1 : 0);
}

}  // namespace hmi
