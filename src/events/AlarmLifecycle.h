#pragma once

#include <optional>

#include "events/AlarmConfirmation.h"
#include "events/EventContext.h"
#include "events/EventStore.h"
#include "events/ImportedIdentities.h"
#include "events/RecordedCallback.h"

namespace ZrHmiEventLogger {

/// What a target system does with each notification: keeps the store in step, logs, and tells the
/// host unless `quiet` is set, as it is when an import replays. Handlers are called with the
/// target's sinkMutex held and throw what the proxy threw, or Abandoned when the target is over,
/// having changed nothing.
class AlarmLifecycle {
public:
    using IZrAlarm = ZrEventLoggerFnxProxyLib::IZrAlarm;
    using IZrMessage = ZrEventLoggerFnxProxyLib::IZrMessage;

    AlarmLifecycle(const EventContext& context, EventStore& store)
        : context(context), store(store), confirmation(context, store) {}

    /// Of every kind but databaseChanged, which is the target's own affair.
    void handle(const RecordedCallback& notification, bool quiet);

    void onMessageSent(IZrMessage& source, bool quiet);
    void onAlarmRaised(IZrAlarm& source, bool quiet);
    void onAlarmCleared(IZrAlarm& source, VARIANT_BOOL removed, bool quiet);
    void onAlarmConfirmed(IZrAlarm& source, VARIANT_BOOL removed, bool quiet);

    /// Brings the stored event of a live alarm up to date, silently: it was taken over by an
    /// import while this notification was on its way.
    void refresh(const RecordedCallback& notification);
    /// What the last import took over; it holds against late notifications. Under sinkMutex.
    ImportedIdentities& imported() { return identities; }

    /// An operator's confirmation, on a host thread. Throws nothing.
    HRESULT confirm(const ZrHmiSrv::Alarm& alarm) { return confirmation.confirm(alarm.id()); }

private:
    using Container = EventStore::Container;
    struct Change;

    /// An alarm that was raised, and what a raise of it replaces if it stands in the store already.
    struct Raised;

    std::optional<ZrHmiSrv::Alarm> findStored(const Raised& raised);
    void convert(ZrHmiSrv::Alarm& alarm, IZrAlarm& source, bool keepId);
    void raise(const Raised& raised, bool quiet);
    void raiseAgain(const Raised& raised, const ZrHmiSrv::Alarm& stored, bool quiet);
    /// Stores the alarm in the place of what was stored of it, logs and tells the host.
    void announce(const ZrHmiSrv::Text& name, const Raised& raised, const ZrHmiSrv::Alarm& alarm,
                  bool quiet);
    bool isCurrent(const ZrHmiSrv::Alarm& stored, IZrAlarm& source) const;
    void onAlarmChanged(const Change& change, bool removed, bool quiet);
    static Container::Entry* findRaised(const Container& events, const Raised& raised);
    Container::Entry* findKnown(const Container& events, const AlarmKey& key) const;

    const EventContext& context;
    EventStore& store;
    AlarmConfirmation confirmation;
    ImportedIdentities identities;
};

}  // namespace ZrHmiEventLogger
