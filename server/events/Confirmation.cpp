#include "server/events/Confirmation.h"

#include "server/events/EventRecord.h"

namespace hmi {

using ZrHmiSrv::AlarmConfirmationState;

namespace {

/// One that failed stays so: whoever confirmed the alarm after that, it was not this request.
bool isOpen(const Confirmation& confirmation) {
    return confirmation.state != ConfirmationState::confirmed &&
           confirmation.state != ConfirmationState::failed;
}

}  // namespace

ConfirmationPtr confirmationOf(const EventRecord& after, const EventRecord& before) {
    if (!before.confirmation || !after.alarm() || !before.alarm() ||
        after.alarm()->time_raised() != before.alarm()->time_raised())
        return nullptr;
    if (after.alarm()->confirmation_state() != AlarmConfirmationState::confirmed ||
        !isOpen(*before.confirmation))
        return before.confirmation;
    auto confirmed = std::make_shared<Confirmation>(*before.confirmation);
    confirmed->state = ConfirmationState::confirmed;
    return confirmed;
}

}  // namespace hmi
