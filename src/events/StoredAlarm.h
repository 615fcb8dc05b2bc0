/// Alarms as they stand in the store of a target system.
#pragma once

#include "events/EventStore.h"
#include "events/ImportedIdentities.h"

namespace ZrHmiEventLogger {

inline ZrHmiSrv::Alarm alarmOf(const EventStore::Container::Entry& entry) {
    return entry.payload().get_alarm();
}

/// A clear without a time of its own happened now.
inline ZrHmiSrv::Timestamp orNow(ZrHmiSrv::Timestamp time) {
    return time.isset() ? time : ZrHmiSrv::Timestamp::now();
}

/// The entry of an alarm that an import took over without its end; null when it has left.
EventStore::Container::Entry* findUnsettled(const EventStore::Container& events,
                                            const std::optional<UnsettledAlarm>& alarm);

}  // namespace ZrHmiEventLogger
