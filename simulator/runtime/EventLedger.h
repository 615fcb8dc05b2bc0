#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "simulator/com/Alarm.h"
#include "simulator/runtime/EventLog.h"

namespace ZrSimulator {

/// What an alarm that is created belongs to.
struct AlarmOrigin {
    std::shared_ptr<Border> border;
    std::weak_ptr<Runtime> runtime;
};

/// The live alarms and the log of one runtime. An alarm lives while it is active or still waits
/// for a confirmation that it requires; the log shows it as it is. Not synchronised.
class EventLedger {
public:
    struct Change {
        Ref<Alarm> alarm;
        bool removed;  ///< it does not live any more
    };

    EventLedger(std::vector<EventRecord> logged, bool instanceIds);

    /// The first of `count` times, each 100 ns after the other and none of them given out before:
    /// what happens later gets a later time.
    FileTime takeTimes(std::uint32_t count = 1);

    /// An alarm that lives already is the same object afterwards.
    Ref<Alarm> raise(const std::string& name, std::shared_ptr<const EventContent> content,
                     FileTime time, const AlarmOrigin& origin);
    /// Nothing when there is no such live alarm or it is cleared already.
    std::optional<Change> clear(const std::string& name, FileTime time);
    /// Nothing when there is no such live alarm or it does not wait for a confirmation.
    std::optional<Change> confirm(const std::string& name, FileTime time);
    EventRecord addMessage(std::shared_ptr<const EventContent> content, FileTime time);

    /// Whether an alarm of this name has ever been raised.
    bool knows(const std::string& name) const { return alarms.count(name) != 0; }
    /// Null when it does not live.
    Ref<Alarm> find(const std::string& name) const;
    /// In order of their raise times.
    std::vector<Ref<Alarm>> liveAlarms() const;

    EventLog log;

private:
    struct Entry {
        Ref<Alarm> alarm;  ///< null when the last alarm of this name has ended
        EventLog::Key logged;
    };
    Change update(Entry& entry, EventRecord record);
    ULONG nextInstanceId() { return instanceIds ? ++lastInstanceId : 0; }

    std::map<std::string, Entry> alarms;
    const bool instanceIds;  ///< otherwise all are 0, which is none
    ULONG lastInstanceId = 0;
    FileTime lastTime = 0;
};

}  // namespace ZrSimulator
