#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

#include <boost/unordered/unordered_flat_set.hpp>

#include "events/AlarmKey.h"
#include "host/Event.h"

namespace ZrHmiEventLogger {

/// Names an alarm of the store that no proxy object stands for.
struct UnsettledAlarm {
    AlarmKey key;
    int hostId;
};

/// What an import took over, so that a notification that the library delivers only afterwards, on
/// the same connection, does not double it. Used with the target's sinkMutex held.
class ImportedIdentities {
public:
    using Clock = std::chrono::steady_clock;

    /// What the library has not delivered by then it delivers no more: all identities end.
    void endAt(Clock::time_point time) { end = time; }
    void dropEnded() {
        if (end != Clock::time_point::max() && Clock::now() >= end)
            *this = {};
    }

    /// So many are to be added.
    void reserve(std::size_t alarmCount, std::size_t messageCount) {
        alarms.reserve(alarmCount);
        messages.reserve(messageCount);
    }
    /// One whose last state was taken over.
    void addAlarm(const AlarmKey& key) { alarms.insert(key); }
    void addMessage(const ZrHmiSrv::Message& message);
    /// A logged alarm that the log showed as alive but the active list did not hold: its end may
    /// still be told, and before it that the alarm was raised again.
    void addUnsettled(const UnsettledAlarm& alarm, const AlarmInstance& instance);
    /// The end of a live alarm was told, which may be late: that of a time before the import. Then it
    /// is told as well that the alarm was raised at the time for which it was taken over.
    void unsettle(const UnsettledAlarm& alarm) {
        if (alarm.key.number && contains(alarm.key))
            unsettledAlarms.insert_or_assign(alarm.key, alarm.hostId);
    }
    /// Its end was told, or the alarm stands in the store as a live one now.
    void settle(const AlarmKey& key) { unsettledAlarms.erase(key); }

    /// It ended as the live alarm that it was. Notifications come in their order, so what is raised
    /// from now on is another one.
    void forget(const AlarmKey& key) {
        if (key.number)
            alarms.erase(key);
    }

    /// Another alarm has taken its place: what is still told of it is news.
    void replace(const AlarmKey& key) {
        settle(key);
        alarms.erase(key);
    }

    bool contains(const AlarmKey& key) const { return alarms.contains(key); }
    /// True once for each message that was taken over.
    bool takeMessage(const ZrHmiSrv::Message& message);
    bool anyUnsettled() const { return !unsettledAlarms.empty(); }
    std::optional<UnsettledAlarm> unsettled(const AlarmKey& key) const;
    std::optional<UnsettledAlarm> unsettled(const AlarmInstance& instance) const;

private:
    /// Holds the store's own message, which is not looked into before another one is of its time.
    struct ImportedMessage {
        ZrHmiSrv::Timestamp timeRaised;
        ZrHmiSrv::Message message;  ///< unset when it has been taken
    };

    Clock::time_point end = Clock::time_point::max();
    boost::unordered_flat_set<AlarmKey, std::hash<AlarmKey>> alarms;
    std::unordered_map<AlarmKey, int> unsettledAlarms;  ///< with their host ids
    std::unordered_map<AlarmInstance, AlarmKey> unsettledInstances;
    std::vector<ImportedMessage> messages;  ///< by time, once `isSorted`
    bool isSorted = true;
};

}  // namespace ZrHmiEventLogger
