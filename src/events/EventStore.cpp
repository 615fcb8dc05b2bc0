#include "events/EventStore.h"

#include <thread>

#include "events/DiagnosticMessage.h"

using ZrHmiSrv::Event;
using ZrHmiSrv::IEventReceiver;

namespace ZrHmiEventLogger {

EventStore::EventStore(const EventContext& context) : context(context) {
    Lock lock(storeMutex);
    collectEvictions();
}

void EventStore::collectEvictions() {
    // Runs inside the container only, and so under storeMutex.
    events->setEvictionCallback(
        [into = &evicted](std::int64_t, Event event) { into->push_back(std::move(event)); });
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
    std::vector<Event> copy;
    Lock lock(storeMutex);
    copy.reserve(events->size());
    events->visitOldestFirst([&](const Container::Entry& entry) { copy.push_back(entry.event()); });
    return copy;
}

std::vector<LiveAlarmId> EventStore::liveAlarms() const {
    std::vector<LiveAlarmId> live;
    Lock lock(storeMutex);
    live.reserve(events->counters().activeAlarmsCount);
    events->visitOldestFirst([&](const Container::Entry& entry) {
        if (const AlarmKey* key = entry.alarmKey())
            live.push_back(
                {entry.pointer()->get(), *key, entry.event().payload().get_alarm().id()});
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
    for (const Event& event : events)
        forgetEvent(event);
}

void EventStore::forgetEvent(const Event& event) const {
    static const ZrHmiSrv::Text name("FORGET_EVENT");
    context.logging.logMessage(
        diagnosticMessage(name, {context.targetName, event.time_received()}));
    context.logging.forgetEvent(event);
}

}  // namespace ZrHmiEventLogger
