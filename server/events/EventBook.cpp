#include "server/events/EventBook.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace hmi {

using ZrHmiSrv::Alarm;
using ZrHmiSrv::Event;
using ZrHmiSrv::Message;

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

/// The alarm of the store with new content, at its old place in the list.
EventRecordPtr changed(const EventStore& store, const Alarm& alarm, bool ended) {
    const EventRecordPtr held = store.find({EventKind::alarm, alarm.id()});
    if (!held)
        return nullptr;
    return std::make_shared<EventRecord>(EventContent{alarm, {}}, held->position.arrival,
                                         ended || held->ended);
}

EventRecordPtr takeOut(EventStore& store, const EventRecord& dropped) {
    EventRecordPtr held =
        dropped.kind == EventKind::alarm ? store.find(dropped.id) : store.findSame(dropped);
    if (held)
        store.erase(held->id);
    return held;
}

}  // namespace

void EventBook::raise(Alarm alarm) {
    const auto event =
        std::make_shared<const EventRecord>(EventContent{std::move(alarm), {}}, ++arrivals);
    Lock lock(mutex);
    insert(event, ChangeType::raised);
}

void EventBook::add(Message message) {
    const auto event =
        std::make_shared<const EventRecord>(EventContent{std::move(message), {}}, ++arrivals);
    Lock lock(mutex);
    insert(event, ChangeType::message);
}

void EventBook::update(Alarm alarm) {
    change(alarm, ChangeType::updated);
}

void EventBook::end(Alarm alarm) {
    change(alarm, ChangeType::removed);
}

void EventBook::insert(const EventRecordPtr& event, ChangeType type) {
    current.insert(event);
    if (draft && draft->covers(event->target))
        draft->store.insert(event);
    sink.post({type, event, nullptr});
    if (current.size() <= capacity)
        return;
    const EventRecordPtr oldest = current.oldest();
    current.erase(oldest->id);
    sink.post({ChangeType::forgotten, oldest, nullptr});
}

void EventBook::change(const Alarm& alarm, ChangeType type) {
    const bool ended = type == ChangeType::removed;
    Lock lock(mutex);
    if (draft) {
        if (const EventRecordPtr event = changed(draft->store, alarm, ended))
            draft->store.insert(event);
    }
    if (const EventRecordPtr event = changed(current, alarm, ended)) {
        current.insert(event);
        sink.post({type, event, nullptr});
    }
}

bool EventBook::drop(const EventRecord& dropped) {
    Lock lock(mutex);
    if (draft)
        takeOut(draft->store, dropped);
    const EventRecordPtr held = takeOut(current, dropped);
    if (held)
        sink.post({ChangeType::forgotten, held, nullptr});
    return held != nullptr;
}

void EventBook::beginReset() {
    Lock lock(mutex);
    draft.emplace();
}

void EventBook::eraseTarget(EventStore& store, const std::string& target) {
    EventFilter filter;
    filter.target = target;
    for (const EventRecordPtr& event : store.select(filter, 0, unlimited).events)
        store.erase(event->id);
}

void EventBook::replaceTarget(const std::string& target, std::span<const Event> events) {
    // The live calls of this target system wait until we return; those of the others, and the
    // readers, get their turn between two portions.
    constexpr std::size_t portion = 256;
    {
        Lock lock(mutex);
        if (draft && !draft->handedOver.insert(target).second)
            eraseTarget(draft->store, target);
    }
    while (!events.empty()) {
        const auto now = events.first(std::min(portion, events.size()));
        events = events.subspan(now.size());
        Lock lock(mutex);
        if (!draft)
            return;
        for (const Event& event : now) {
            std::optional<EventContent> content = contentOf(event);
            if (content && draft->store.size() < capacity)
                draft->store.insert(std::make_shared<EventRecord>(std::move(*content), ++arrivals));
        }
    }
}

void EventBook::publishReset() {
    std::optional<Draft> published;  // outlives the lock, so that the old events are freed outside
    Lock lock(mutex);
    if (!draft)
        return;
    published = std::exchange(draft, std::nullopt);
    std::swap(current, published->store);
    sink.post({ChangeType::reset, nullptr, nullptr});
}

void EventBook::abandonReset() {
    std::optional<Draft> abandoned;
    Lock lock(mutex);
    abandoned = std::exchange(draft, std::nullopt);
}

EventRecordPtr EventBook::find(EventId id) const {
    Lock lock(mutex);
    return current.find(id);
}

EventPage EventBook::select(const EventFilter& filter, std::size_t offset,
                            std::size_t limit) const {
    Lock lock(mutex);
    return current.select(filter, offset, limit);
}

std::map<std::string, TargetCounts> EventBook::countsByTarget() const {
    Lock lock(mutex);
    return current.countsByTarget();
}

}  // namespace hmi
