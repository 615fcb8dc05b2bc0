#include "events/AlarmLifecycle.h"

#include "events/Conversion.h"

using ZrHmiSrv::Message;

namespace ZrHmiEventLogger {

namespace {

constexpr Audience audience(bool quiet) {
    return quiet ? Audience::log : Audience::logAndHost;
}

}  // namespace

void AlarmLifecycle::handle(const RecordedCallback& notification, bool quiet) {
    identities.dropEnded();
    switch (notification.kind) {
        case NotificationKind::messageSent:
            return onMessageSent(*notification.message, quiet);
        case NotificationKind::alarmRaised:
            return onAlarmRaised(*notification.alarm, quiet);
        case NotificationKind::alarmCleared:
        case NotificationKind::alarmConfirmed:
            return changedAlarms.change(notification, audience(quiet));
        case NotificationKind::databaseChanged:
            return;
    }
}

void AlarmLifecycle::onMessageSent(IZrMessage& source, bool quiet) {
    rejectedEvents.unlessMalformed([&] {
        Message message;
        toHostMessage(message, source, context);
        if (identities.takeMessage(message))
            return;
        bool kept = false;
        Lock lock(store.publishMutex);
        context.proceed();
        const auto evicted = store.change([&](EventStore::Container& events) {
            kept = events.insert(message, {}, context.eventLimit) != nullptr;
        });
        // The host hears of a message before it hears that the message is forgotten.
        if (kept)
            store.forget(evicted);
        if (!quiet)
            context.logging.sendMessage(message);
        if (!kept)
            store.forget(evicted);
    });
}

void AlarmLifecycle::onAlarmRaised(IZrAlarm& source, bool quiet) {
    rejectedEvents.unlessMalformed([&] { raisedAlarms.raise(source, quiet); });
}

void AlarmLifecycle::refresh(const RecordedCallback& notification, bool isRaisedLater) {
    const bool isRaise = notification.kind == NotificationKind::alarmRaised;
    // The object stands for a later raise by now: its values are not those of what is changed.
    if (!isRaise && !raisedAlarms.isCurrent(*notification.alarm))
        return changedAlarms.change(notification, Audience::nobody);
    // What has ended was raised again before the import took it over.
    if (!isRaise && notification.flag == VARIANT_TRUE && isRaisedLater)
        return;
    rejectedEvents.unlessMalformed([&] { raisedAlarms.refresh(*notification.alarm, isRaise); });
    if (!isRaise)
        changedAlarms.change(notification, Audience::nobody);
}

}  // namespace ZrHmiEventLogger
