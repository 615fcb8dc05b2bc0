#pragma once

#include <optional>

#include "events/EventContext.h"
#include "events/EventStore.h"
#include "events/ImportedIdentities.h"

namespace ZrHmiEventLogger {

/// What becomes of an alarm that is raised. Called with sinkMutex held; throws what the proxy
/// threw, having changed nothing, or Abandoned.
class RaisedAlarms {
public:
    using IZrAlarm = ZrEventLoggerFnxProxyLib::IZrAlarm;

    RaisedAlarms(const EventContext& context, EventStore& store, ImportedIdentities& identities)
        : context(context), store(store), identities(identities) {}

    /// Enters the alarm, or what is new of one that stands in the store: as the same object, or
    /// because an import took it over without its end. One whose end was imported already was
    /// raised before that.
    void raise(IZrAlarm& source, bool quiet);
    /// Brings the event of a live alarm up to date, silently. `isRaise`: it was raised again, and
    /// is entered anew if it had ended before that; otherwise a clear of which its logger does not
    /// know the time stays.
    void refresh(IZrAlarm& source, bool isRaise);
    /// Whether the event of a live alarm is of the time at which its object was raised last.
    bool isCurrent(IZrAlarm& source) const;

private:
    using Container = EventStore::Container;
    struct Raised {
        IZrAlarm& source;
        AlarmKey key;
        std::optional<UnsettledAlarm> unsettled;  ///< the same alarm, before it was raised again
    };

    std::optional<UnsettledAlarm> findUnsettledAlarm(IZrAlarm& source, const AlarmKey& key) const;
    std::optional<ZrHmiSrv::Alarm> findStored(const Raised& raised) const;
    bool endedBeforeImport(const Raised& raised) const;
    void dropFormerState(const Raised& raised, bool quiet);
    void announce(const ZrHmiSrv::Text& name, const Raised& raised, const ZrHmiSrv::Alarm& alarm,
                  bool quiet);
    /// Puts the alarm in the place of what was stored of it.
    EventStore::Evicted replace(const Raised& raised, const ZrHmiSrv::Alarm& alarm,
                                EventStore::AlarmPointer pointer, Container::Removed& former)
        REQUIRES(store.publishMutex);
    static Container::Entry* find(const Container& events, const Raised& raised);

    const EventContext& context;
    EventStore& store;
    ImportedIdentities& identities;
};

}  // namespace ZrHmiEventLogger
