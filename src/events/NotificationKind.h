#pragma once

#include <cstddef>
#include <cstdint>

namespace ZrHmiEventLogger {

/// What a logger notifies of. The numbers are the order of the names.
enum class NotificationKind : std::uint8_t {
    messageSent = 0,
    alarmRaised = 1,
    alarmCleared = 2,
    alarmConfirmed = 3,
    databaseChanged = 4,
};
constexpr std::size_t notificationKinds = 5;

/// The notification's name; empty for anything else.
constexpr const char* toText(NotificationKind kind) {
    switch (kind) {
        case NotificationKind::messageSent:
            return "OnMessageSent";
        case NotificationKind::alarmRaised:
            return "OnAlarmRaised";
        case NotificationKind::alarmCleared:
            return "OnAlarmCleared";
        case NotificationKind::alarmConfirmed:
            return "OnAlarmConfirmed";
        case NotificationKind::databaseChanged:
            return "OnDatabaseChanged";
    }
    return "";
}

}  // namespace ZrHmiEventLogger
