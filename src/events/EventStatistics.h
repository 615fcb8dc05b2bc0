#pragma once

#include <cstdint>

#include "events/EventIdentity.h"

namespace ZrHmiEventLogger {

/// What an event store holds and what was ever put into it, changed by nothing but the steps in
/// the life of an entry.
struct EventStatistics {
    std::uint64_t cachedMessagesCount = 0;
    std::uint64_t cachedAlarmsCount = 0;
    std::uint64_t cachedInvalidAlarmsCount = 0;
    std::uint64_t inactiveEventsCount = 0;  ///< held without a live proxy alarm
    std::uint64_t activeAlarmsCount = 0;    ///< held with a live proxy alarm
    std::uint64_t importedEventsCount = 0;
    std::uint64_t importedMessagesCount = 0;
    std::uint64_t importedInvalidAlarmsCount = 0;
    friend bool operator==(const EventStatistics&, const EventStatistics&) = default;

    void inserted(EventKind kind, bool live) {
        ++(live ? activeAlarmsCount : inactiveEventsCount);
        ++importedEventsCount;
        importedMessagesCount += kind == EventKind::message;
        importedInvalidAlarmsCount += kind == EventKind::invalidAlarm;
        countHeld(kind);
    }
    void released() {
        --activeAlarmsCount;
        ++inactiveEventsCount;
    }
    void replaced(EventKind before, EventKind now) {
        uncountHeld(before);
        countHeld(now);
    }
    void removed(EventKind kind, bool live) {
        --(live ? activeAlarmsCount : inactiveEventsCount);
        uncountHeld(kind);
    }

private:
    void countHeld(EventKind kind) {
        cachedMessagesCount += kind == EventKind::message;
        cachedAlarmsCount += isAlarm(kind);
        cachedInvalidAlarmsCount += kind == EventKind::invalidAlarm;
    }
    void uncountHeld(EventKind kind) {
        cachedMessagesCount -= kind == EventKind::message;
        cachedAlarmsCount -= isAlarm(kind);
        cachedInvalidAlarmsCount -= kind == EventKind::invalidAlarm;
    }
};

}  // namespace ZrHmiEventLogger
