#pragma once

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

/// What an import took over, so that a notification that the library delivers only afterwards
/// does not double it. Each identity holds against one notification of a kind. Used with the
/// target's sinkMutex held.
class ImportedIdentities {
public:
    void addAlarm(const AlarmKey& key) { alarms.try_emplace(key); }
    void addMessage(const ZrHmiSrv::Message& message);
    /// A logged alarm that the log showed as alive but the active list did not hold: its end may
    /// still be told, and before it that the alarm was raised again.
    void addUnsettled(const AlarmKey& key, int hostId);

    bool holdsAlarm(const AlarmKey& key) const { return alarms.contains(key); }
    /// True once for each kind of notification of an alarm that was taken over.
    bool takeAlarm(const AlarmKey& key, NotificationKind kind);
    /// True once for each message that was taken over.
    bool takeMessage(const ZrHmiSrv::Message& message);
    std::optional<UnsettledAlarm> unsettled(const AlarmKey& key) const;
    /// The one that is raised again under this key.
    std::optional<UnsettledAlarm> raisedAgain(const AlarmKey& key) const;

private:
    struct MessageIdentity {
        std::int64_t timeRaised;
        std::size_t digest;  ///< of class, id, source and arguments
        friend bool operator==(const MessageIdentity&, const MessageIdentity&) = default;
    };
    struct Hash {
        std::size_t operator()(const MessageIdentity& identity) const;
    };
    static MessageIdentity identityOf(const ZrHmiSrv::Message& message);

    std::unordered_map<AlarmKey, std::uint8_t> alarms;  ///< with a bit for each kind taken
    std::unordered_map<AlarmKey, int> unsettledAlarms;  ///< with their host ids
    std::unordered_map<std::uint32_t, AlarmKey> unsettledNumbers;
    std::unordered_multiset<MessageIdentity, Hash> messages;
};

}  // namespace ZrHmiEventLogger
