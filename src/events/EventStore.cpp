#include "events/EventStore.h"

#include <thread>

#include "events/Conversion.h"
#include "events/DiagnosticMessage.h"

using ZrHmiSrv::Event;
using ZrHmiSrv::IEventReceiver;
using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

EventStore::EventStore(const EventContext& context) : context(context) {
    Lock lock(storeMutex);
    collectEvictions();
}

void EventStore::collectEvictions() {
    // Runs inside the container only, and so under storeMutex.
    events->setEvictionCallback(
        [into = &evicted](std::int64_t, Value payload) { into->push_back(std::move(payload)); });
}

void EventStore::publish() {
    const EventStatistics& counters = events->counters();
    Lock lock(statisticsMutex);
    published = counters;
}

std::shared_ptr<EventStore::Container> EventStore::exchange(std::shared_ptr<Container> rebuilt) {
    Lock lock(storeMutex);
    std::swap(events, rebuilt);
    collectEvictions();
    publish();
    return rebuilt;
}

void EventStore::awaitChange(std::chrono::steady_clock::time_point deadline) {
    while (!publishMutex.try_lock()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    publishMutex.unlock();
}

bool EventStore::removeAlarms() {
    std::vector<Container::Removed> removed;
    {
        Lock lock(publishMutex);
        change([&](Container& container) { removed = container.removeAlarms(); });
    }
    return !removed.empty();
}

bool EventStore::tryProvideEvents(IEventReceiver& receiver) {
    if (!publishMutex.try_lock())
        return false;
    Lock lock(publishMutex, std::adopt_lock);
    if (!context.isOver())
        receiver.replace_events(context.targetName.c_str(), eventsOldestFirst());
    return true;
}

std::vector<Event> EventStore::eventsOldestFirst() const {
    std::vector<Value> payloads;
    {
        Lock lock(storeMutex);
        payloads.reserve(events->size());
        events->visitOldestFirst(
            [&](const Container::Entry& entry) { payloads.push_back(entry.payload()); });
    }
    std::vector<Event> copy;
    copy.reserve(payloads.size());
    for (Value& payload : payloads)
        copy.push_back(eventOf(std::move(payload)));
    return copy;
}

std::vector<LiveAlarmId> EventStore::liveAlarms() const {
    std::vector<LiveAlarmId> live;
    Lock lock(storeMutex);
    const std::size_t count = events->counters().activeAlarmsCount;
    if (count == 0)
        return live;
    live.reserve(count);
    events->visitOldestFirst([&](const Container::Entry& entry) {
        if (const AlarmKey* key = entry.alarmKey())
            live.push_back(
                {entry.pointer()->get(), *key, entry.payload().get_alarm().id()});
    });
    return live;
}

EventStore::AlarmPointer EventStore::pin(int hostId) const {
    Lock lock(storeMutex);
    const Container::Entry* entry = events->findById(hostId);
    return entry ? entry->pointer() : nullptr;
}

EventStatistics EventStore::statistics() const {
    Lock lock(statisticsMutex);
    return published;
}

void EventStore::forget(const Evicted& events) const {
    for (const Value& payload : events)
        forgetEvent(payload);
}

void EventStore::forgetEvent(const Value& payload) const {
    static const ZrHmiSrv::Text name = ZrHmiSrv::Text::constant("FORGET_EVENT");
    const Event event = eventOf(payload);
    context.logging.logMessage(
        diagnosticMessage(name, {context.targetName, event.time_received()}));
    context.logging.forgetEvent(event);
}

}  // namespace ZrHmiEventLogger
