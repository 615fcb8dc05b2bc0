#include "host/EventNodes.h"

namespace ZrHmiSrv {

const detail::AlarmData& Alarm::data() const noexcept {
    static const detail::AlarmData unset;
    if (!node || kind != ValueType::alarm)
        return unset;
    return static_cast<const detail::AlarmNode&>(*node).data;
}

detail::AlarmData& Alarm::edit_data() {
    become(ValueType::alarm);
    return static_cast<detail::AlarmNode&>(edit()).data;
}

int Alarm::id() const noexcept {
    return data().id;
}

void Alarm::set_id(int id) {
    edit_data().id = id;
}

Severity Alarm::severity() const noexcept {
    return data().severity;
}

void Alarm::set_severity(Severity severity) {
    edit_data().severity = severity;
}

Timestamp Alarm::time_raised() const noexcept {
    return data().time_raised;
}

void Alarm::set_time_raised(Timestamp time) {
    edit_data().time_raised = time;
}

Timestamp Alarm::time_cleared() const noexcept {
    return data().time_cleared;
}

void Alarm::set_time_cleared(Timestamp time) {
    edit_data().time_cleared = time;
}

Timestamp Alarm::time_confirmed() const noexcept {
    return data().time_confirmed;
}

void Alarm::set_time_confirmed(Timestamp time) {
    edit_data().time_confirmed = time;
}

AlarmState Alarm::alarm_state() const noexcept {
    return data().state;
}

void Alarm::set_alarm_state(AlarmState state) {
    edit_data().state = state;
}

AlarmConfirmationState Alarm::confirmation_state() const noexcept {
    return data().confirmation;
}

void Alarm::set_confirmation_state(AlarmConfirmationState state) {
    edit_data().confirmation = state;
}

bool Alarm::is_active() const noexcept {
    return isset() && !time_cleared().isset() && alarm_state() != AlarmState::invalid;
}

}  // namespace ZrHmiSrv
