#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "events/AlarmKey.h"
#include "events/NotificationKind.h"
#include "host/Event.h"

namespace ZrHmiEventLogger {

/// Names an alarm of the store that no proxy object stands for.
struct UnsettledAlarm {
    AlarmKey key;
    int hostId;
};

/// What an import took over, so that a notification that the library delivers only afterwards, on
/// the same connection, does not double it. Each identity holds against one notification of a
/// kind. Used with the target's sinkMutex held.
class ImportedIdentities {
public:
    using Clock = std::chrono::steady_clock;

    /// What the library has not delivered by then it delivers no more: all identities end.
    void endAt(Clock::time_point time) { end = time; }
    void dropEnded() {
        if (Clock::now() >= end)
            *this = {};
    }

    void addAlarm(const AlarmKey& key) { ++alarms[key].count; }
    void addMessage(const ZrHmiSrv::Message& message);
    /// A logged alarm that the log showed as alive but the active list did not hold: its end may
    /// still be told, and before it that the alarm was raised again.
    void addUnsettled(const UnsettledAlarm& alarm, const std::optional<AlarmInstance>& instance);
    /// Its end was told.
    void settle(const AlarmKey& key);

    bool holdsAlarm(const AlarmKey& key) const { return alarms.contains(key); }
    /// True once for each kind of notification of an alarm that was taken over.
    bool takeAlarm(const AlarmKey& key, NotificationKind kind);
    /// True once for each message that was taken over.
    bool takeMessage(const ZrHmiSrv::Message& message);
    std::optional<UnsettledAlarm> unsettled(const AlarmKey& key) const;
    bool anyUnsettled() const { return !unsettledAlarms.empty(); }
    std::optional<UnsettledAlarm> unsettled(const AlarmInstance& instance) const;

private:
    struct Copies {
        std::size_t count = 0;
        std::array<std::size_t, notificationKinds> taken{};
    };
    struct MessageIdentity {
        std::int64_t timeRaised;
        std::size_t digest;  ///< of class, id, source and arguments
        friend bool operator==(const MessageIdentity&, const MessageIdentity&) = default;
    };
    struct Hash {
        std::size_t operator()(const MessageIdentity& identity) const;
    };
    static MessageIdentity identityOf(const ZrHmiSrv::Message& message);

    Clock::time_point end = Clock::time_point::max();
    std::unordered_map<AlarmKey, Copies> alarms;
    std::unordered_map<AlarmKey, int> unsettledAlarms;  ///< with their host ids
    std::unordered_map<AlarmInstance, AlarmKey> unsettledInstances;
    std::unordered_multiset<MessageIdentity, Hash> messages;
};

}  // namespace ZrHmiEventLogger
