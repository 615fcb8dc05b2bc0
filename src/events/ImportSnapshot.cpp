#include "events/ImportSnapshot.h"

#include "events/Conversion.h"
#include "events/KeptIds.h"
#include "events/ProxyValue.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::ComPtr;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

namespace {

/// Of one of several alarms that have the same key because their logger does not number them.
AlarmKey keyOfCleared(AlarmKey key, const Alarm& alarm) {
    boost::hash_combine(key.origin, alarm.time_cleared().nanoseconds());
    return key;
}

void setHostId(Value& payload, int hostId) {
    Alarm alarm = payload.get_alarm();
    payload = Value();  // so that the alarm need not be copied
    alarm.set_id(hostId);
    payload = Value(std::move(alarm));
}

bool isStillActive(const EventContext& context, IZrLoggedEvent& item) {
    const auto extended = context.query<IZrLoggedEvent2>(item);
    return extended &&
           context.read(item, &IZrLoggedEvent::get_EventType) == LoggedEventType::alarm &&
           context.read(*extended, &IZrLoggedEvent2::get_IsActive) == VARIANT_TRUE;
}

}  // namespace

void ImportSnapshot::fetch(Logger& logger) {
    const auto loggedEvents =
        context.receive<IZrLoggedEventCollection>([&](IZrLoggedEventCollection** events) {
            return logger.GetLoggedEvents(static_cast<ULONG>(context.eventLimit), events);
        });
    const auto alarms = context.receive<IZrAlarmCollection>(
        [&](IZrAlarmCollection** collection) { return logger.GetActiveAlarms(collection); });
    const ULONG loggedCount = context.countOf<IZrLoggedEvent>(*loggedEvents);
    const ULONG activeCount = context.countOf<IZrAlarm>(*alarms);
    progress.begin(std::uint64_t{loggedCount} + activeCount);
    context.forEach<IZrLoggedEvent>(*loggedEvents, loggedCount, [&](auto item) {
        ++fetchedLogged;
        rejected.unlessMalformed([&] { takeLogged(std::move(item)); });
        progress.advance();
    });
    context.forEach<IZrAlarm>(*alarms, activeCount,
                              [&](auto alarm) { takeActive(std::move(alarm)); });
    convertActive();
    convertUnlisted();
    // The proxy is not called any more: an import that fails or is abandoned has drawn no ids.
    context.proceed();
    keepIds();
    drawIds();
    build();
}

void ImportSnapshot::takeLogged(ComPtr<IZrLoggedEvent> item) {
    if (isStillActive(context, *item)) {
        const AlarmKey key = alarmKeyOf(context, *item);
        skipped.push_back({std::move(item), key, {}, {}});
        return;
    }
    Logged entry{toHostPayload(*item, context, 0), {}};
    if (entry.payload.type() == ValueType::alarm)
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

/// Leaves of the active alarms those that were not rejected.
void ImportSnapshot::convertActive() {
    std::erase_if(active, [&](Active& entry) {
        const bool isConverted = rejected.unlessMalformed(
            [&] { toHostAlarm(entry.alarm, *entry.source, context, 0, true); });
        progress.advance();
        if (!isConverted) {
            rejectedAlarms.insert({entry.source.get(), {entry.source, entry.key}});
            return activeAlarms.erase(entry.source.get()) != 0;
        }
        entry.key.timeRaised = entry.alarm.time_raised();  // it may have been raised again
        activeKeys.insert(entry.key);
        clearedKeys.insert(keyOfCleared(entry.key, entry.alarm));
        return false;
    });
}

bool ImportSnapshot::leftOut(IZrAlarm& alarm) const {
    const auto found = rejectedAlarms.find(&alarm);
    return found != rejectedAlarms.end() && found->second.key == alarmKeyOf(context, alarm);
}

/// Leaves of the skipped those that have ended between the two lists. Where the logger does not
/// number its alarms, also those that were raised again: then the notification of that will tell.
void ImportSnapshot::convertUnlisted() {
    std::erase_if(skipped, [&](const Skipped& entry) { return activeKeys.contains(entry.key); });
    if (skipped.empty())
        return;
    const auto raisedAgain = listedInstances();
    std::erase_if(skipped, [&](Skipped& entry) {
        return !rejected.unlessMalformed([&] {
            entry.instance = alarmInstanceOf(context, *entry.item, entry.key);
            entry.payload = toHostPayload(*entry.item, context, 0);
        }) || raisedAgain.contains(entry.instance);
    });
}

std::unordered_set<AlarmInstance> ImportSnapshot::listedInstances() const {
    std::unordered_set<AlarmInstance> listed;
    for (const Active& entry : active)
        if (entry.key.number)
            listed.insert(alarmInstanceOf(context, *entry.source, entry.key));
    return listed;
}

/// An alarm that survived a reconnection keeps its id: as the same object or, where no such
/// object claims the id, by its key.
void ImportSnapshot::keepIds() {
    KeptIds ids(running.liveAlarms());
    for (Active& entry : active)
        entry.keptId = ids.take(entry.source.get());
    for (Active& entry : active)
        if (!entry.keptId)
            entry.keptId = ids.take(entry.key);
    keptIds = ids.taken();
}

/// Every event that was not skipped has a number, also one that is no alarm.
void ImportSnapshot::drawIds() {
    for (Logged& entry : logged) {
        const int hostId = context.drawHostId();
        if (entry.key)
            setHostId(entry.payload, hostId);
    }
    for (Active& entry : active)
        entry.alarm.set_id(entry.keptId ? *entry.keptId : context.drawHostId());
    for (Skipped& entry : skipped)
        setHostId(entry.payload, context.drawHostId());
}

void ImportSnapshot::build() {
    rebuilt = std::make_shared<Container>();
    rebuilt->reserve(active.size());
    rebuilt->setEvictionCallback(
        [this](std::int64_t, Value payload) { evicted.push_back(std::move(payload)); });
    insertLogged();
    insertActive();
    insertUnlisted();
}

/// Without a number, one that was cleared at another time is another alarm of the same time and
/// place. One that the log shows as not cleared may have been cleared since.
bool ImportSnapshot::isActive(const Logged& entry) const {
    if (!entry.key || !activeKeys.contains(*entry.key))
        return false;
    const auto alarm = entry.payload.get_alarm();
    return entry.key->number || !alarm.time_cleared().isset() ||
           clearedKeys.contains(keyOfCleared(*entry.key, alarm));
}

void ImportSnapshot::insertLogged() {
    std::size_t alarmCount = active.size() + skipped.size();
    for (const Logged& entry : logged)
        alarmCount += entry.key.has_value();
    identities.reserve(alarmCount, logged.size() + active.size() + skipped.size() - alarmCount);
    for (; !logged.empty(); logged.pop_front()) {
        Logged& entry = logged.front();
        if (!entry.payload.isset() || isActive(entry))
            continue;
        if (entry.key)
            identities.addAlarm(*entry.key);
        else
            identities.addMessage(entry.payload.get_message());
        rebuilt->insert(std::move(entry.payload), {}, context.eventLimit);
    }
}

void ImportSnapshot::insertActive() {
    for (const Active& entry : active) {
        identities.addAlarm(entry.key);
        auto pointer = std::make_shared<ScopedEventPointer<IZrAlarm>>(entry.source);
        rebuilt->insert(entry.alarm, {std::move(pointer), entry.key}, context.eventLimit);
    }
}

void ImportSnapshot::insertUnlisted() {
    for (const Skipped& entry : skipped) {
        identities.addUnsettled({entry.key, entry.payload.get_alarm().id()},
                                entry.instance);
        rebuilt->insert(entry.payload, {}, context.eventLimit);
    }
}

}  // namespace ZrHmiEventLogger
