#pragma once

#include <cstdint>
#include <optional>

#include "host/Event.h"
#include "host/Value.h"

namespace ZrHmiEventLogger {

enum class EventKind : std::uint8_t { other, message, alarm, invalidAlarm };

constexpr bool isAlarm(EventKind kind) {
    return kind == EventKind::alarm || kind == EventKind::invalidAlarm;
}

/// What an event's payload says of it, read once so that counting it does not touch it again.
struct EventIdentity {
    explicit EventIdentity(const ZrHmiSrv::Event& event) {
        const ZrHmiSrv::Value& payload = event.payload();
        if (payload.type() == ZrHmiSrv::ValueType::message) {
            kind = EventKind::message;
        } else if (payload.type() == ZrHmiSrv::ValueType::alarm) {
            const ZrHmiSrv::Alarm alarm = payload.get_alarm();
            const bool invalid = alarm.alarm_state() == ZrHmiSrv::AlarmState::invalid;
            kind = invalid ? EventKind::invalidAlarm : EventKind::alarm;
            hostId = alarm.id();
        }
    }

    EventKind kind = EventKind::other;
    std::optional<int> hostId;  ///< of alarms
};

}  // namespace ZrHmiEventLogger
