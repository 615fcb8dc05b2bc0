#pragma once

#include <cstdint>
#include <optional>

#include "host/Event.h"
#include "host/Value.h"

namespace ZrHmiEventLogger {

enum class EventKind : std::uint8_t { message, alarm, invalidAlarm };

constexpr bool isAlarm(EventKind kind) {
    return kind == EventKind::alarm || kind == EventKind::invalidAlarm;
}

/// What an event's payload, an alarm or a message, says of it, read once so that counting it does
/// not touch it again.
struct EventIdentity {
    explicit EventIdentity(const ZrHmiSrv::Value& payload) {
        if (payload.type() == ZrHmiSrv::ValueType::message) {
            timeRaised = payload.get_message().time_raised();
        } else {
            const ZrHmiSrv::Alarm alarm = payload.get_alarm();
            const bool invalid = alarm.alarm_state() == ZrHmiSrv::AlarmState::invalid;
            kind = invalid ? EventKind::invalidAlarm : EventKind::alarm;
            hostId = alarm.id();
            timeRaised = alarm.time_raised();
        }
    }

    EventKind kind = EventKind::message;
    std::optional<int> hostId;  ///< of alarms
    ZrHmiSrv::Timestamp timeRaised;
};

}  // namespace ZrHmiEventLogger
