#include "host/EventNodes.h"

namespace ZrHmiSrv {

const detail::MessageData& Message::data() const noexcept {
    static const detail::MessageData unset;
    if (!node || kind != ValueType::message)
        return unset;
    return static_cast<const detail::MessageNode&>(*node).data;
}

detail::MessageData& Message::edit_data() {
    become(ValueType::message);
    return static_cast<detail::MessageNode&>(edit()).data;
}

Severity Message::severity() const noexcept {
    return data().severity;
}

void Message::set_severity(Severity severity) {
    edit_data().severity = severity;
}

Timestamp Message::time_raised() const noexcept {
    return data().time_raised;
}

void Message::set_time_raised(Timestamp time) {
    edit_data().time_raised = time;
}

}  // namespace ZrHmiSrv
