#pragma once

#include "events/AlarmConfirmation.h"
#include "events/ChangedAlarms.h"
#include "events/EventContext.h"
#include "events/EventStore.h"
#include "events/ImportedIdentities.h"
#include "events/RaisedAlarms.h"
#include "events/RecordedCallback.h"
#include "events/RejectedEvents.h"

namespace ZrHmiEventLogger {

/// What a target system does with each notification: keeps the store in step, logs, and tells the
/// host unless `quiet` is set, as it is when an import replays. Handlers are called with the
/// target's sinkMutex held and throw what the proxy threw, or Abandoned when the target is over,
/// having changed nothing. An event that contradicts itself is rejected.
class AlarmLifecycle {
public:
    using IZrAlarm = ZrEventLoggerFnxProxyLib::IZrAlarm;
    using IZrMessage = ZrEventLoggerFnxProxyLib::IZrMessage;

    AlarmLifecycle(const EventContext& context, EventStore& store)
        : context(context),
          store(store),
          confirmation(context, store),
          raisedAlarms(context, store, identities),
          changedAlarms(context, store, identities),
          rejectedEvents(context, store) {}

    /// Of every kind but databaseChanged, which is the target's own affair.
    void handle(const RecordedCallback& notification, bool quiet);

    void onAlarmRaised(IZrAlarm& source, bool quiet);

    /// Brings the stored event of a live alarm up to date, silently: it was taken over by an
    /// import while this notification was on its way. `isRaisedLater`: another one, behind it,
    /// says that the alarm was raised again.
    void refresh(const RecordedCallback& notification, bool isRaisedLater);
    /// What the last import took over; it holds against late notifications. Under sinkMutex.
    ImportedIdentities& imported() { return identities; }
    RejectedEvents& rejected() { return rejectedEvents; }

    /// An operator's confirmation, on a host thread. Throws nothing.
    HRESULT confirm(const ZrHmiSrv::Alarm& alarm) { return confirmation.confirm(alarm.id()); }

private:
    void onMessageSent(IZrMessage& source, bool quiet);

    const EventContext& context;
    EventStore& store;
    ImportedIdentities identities;
    AlarmConfirmation confirmation;
    RaisedAlarms raisedAlarms;
    ChangedAlarms changedAlarms;
    RejectedEvents rejectedEvents;
};

}  // namespace ZrHmiEventLogger
