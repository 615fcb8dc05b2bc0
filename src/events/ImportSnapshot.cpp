#include "events/ImportSnapshot.h"

#include "events/Conversion.h"
#include "events/ProxyValue.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::ComPtr;
using ZrHmiSrv::Event;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

namespace {

bool isStillActive(const EventContext& context, IZrLoggedEvent& item) {
    const auto extended = context.query<IZrLoggedEvent2>(item);
    return extended &&
           context.read(item, &IZrLoggedEvent::get_EventType) == LoggedEventType::alarm &&
           context.read(*extended, &IZrLoggedEvent2::get_IsActive) == VARIANT_TRUE;
}

}  // namespace

void ImportSnapshot::fetch(Logger& logger) {
    context.proceed();
    const auto loggedEvents =
        receiveObject<IZrLoggedEventCollection>([&](IZrLoggedEventCollection** events) {
            return logger.GetLoggedEvents(static_cast<ULONG>(context.eventLimit), events);
        });
    context.proceed();
    const auto alarms = receiveObject<IZrAlarmCollection>(
        [&](IZrAlarmCollection** collection) { return logger.GetActiveAlarms(collection); });
    forEachItem<IZrLoggedEvent>(*loggedEvents, [&](auto item) {
        takeLogged(std::move(item));
        context.proceed();
    });
    forEachItem<IZrAlarm>(*alarms, [&](auto alarm) {
        takeActive(std::move(alarm));
        context.proceed();
    });
    keepIds();
    convertActive();
    build();
}

void ImportSnapshot::takeLogged(ComPtr<IZrLoggedEvent> item) {
    if (isStillActive(context, *item)) {
        const AlarmKey key = alarmKeyOf(context, *item);
        skipped.push_back({std::move(item), key});
        return;
    }
    Logged entry;
    toHostEvent(entry.event, *item, context, context.drawHostId());
    if (entry.event.payload().type() == ValueType::alarm)
        entry.key = alarmKeyOf(context, *item);
    logged.push_back(std::move(entry));
}

void ImportSnapshot::takeActive(ComPtr<IZrAlarm> source) {
    if (!activeAlarms.insert(source.get()).second)
        return;
    const AlarmKey key = alarmKeyOf(context, *source);
    activeKeys.insert(key);
    active.push_back({std::move(source), key, {}, {}});
}

/// An alarm that survived a reconnection keeps its id: as the same object or, where no such
/// object claims the id, by its key.
void ImportSnapshot::keepIds() {
    for (Active& entry : active)
        entry.keptId = keepOnce(running.findHostId(entry.source.get()));
    for (Active& entry : active)
        if (!entry.keptId)
            entry.keptId = keepOnce(running.findHostId(entry.key, keptIds));
}

std::optional<int> ImportSnapshot::keepOnce(std::optional<int> hostId) {
    return hostId && keptIds.insert(*hostId).second ? hostId : std::nullopt;
}

void ImportSnapshot::convertActive() {
    for (Active& entry : active) {
        const int hostId = entry.keptId ? *entry.keptId : context.drawHostId();
        toHostAlarm(entry.alarm, *entry.source, context, hostId, false);
        entry.key.timeRaised = entry.alarm.time_raised();  // it may have been raised again
        activeKeys.insert(entry.key);
    }
}

void ImportSnapshot::build() {
    rebuilt = std::make_shared<Container>();
    rebuilt->reserve(active.size());
    rebuilt->setEvictionCallback(
        [this](std::int64_t, Event event) { evicted.push_back(std::move(event)); });
    for (const Logged& entry : logged) {
        const Value& payload = entry.event.payload();
        if (!payload.isset() || (entry.key && activeKeys.contains(*entry.key)))
            continue;
        if (entry.key)
            identities.addAlarm(*entry.key);
        else
            identities.addMessage(payload.get_message());
        rebuilt->insert(entry.event, {}, context.eventLimit);
    }
    for (const Active& entry : active) {
        identities.addAlarm(entry.key);
        auto pointer = std::make_shared<ScopedEventPointer<IZrAlarm>>(entry.source);
        rebuilt->insert(eventOf(entry.alarm), {std::move(pointer), entry.key}, context.eventLimit);
    }
}

std::vector<ImportSnapshot::Skipped> ImportSnapshot::unlisted() const {
    std::vector<Skipped> missing;
    for (const Skipped& entry : skipped)
        if (!activeKeys.contains(entry.key))
            missing.push_back(entry);
    if (missing.empty())
        return missing;
    // The active list may hold an alarm under a later time than the log did.
    std::unordered_set<AlarmInstance> listed;
    for (const Active& entry : active)
        if (const auto instance = alarmInstanceOf(context, *entry.source, entry.key))
            listed.insert(*instance);
    std::erase_if(missing, [&](const Skipped& entry) {
        const auto instance = alarmInstanceOf(context, *entry.item, entry.key);
        return instance && listed.contains(*instance);
    });
    return missing;
}

}  // namespace ZrHmiEventLogger
