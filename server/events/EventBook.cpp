#include "server/events/EventBook.h"

#include <limits>
#include <unordered_set>
#include <utility>

#include "server/events/KnownEvents.h"

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
    sink.post({type, event});
    forgetBeyondCapacity();
}

void EventBook::forgetBeyondCapacity() {
    while (current.size() > capacity) {
        const EventRecordPtr oldest = current.oldest();
        current.erase(oldest->id);
        sink.post({ChangeType::forgotten, oldest});
    }
}

void EventBook::change(const Alarm& alarm, ChangeType type) {
    const bool ended = type == ChangeType::removed;
    Lock lock(mutex);
    if (const EventRecordPtr event = changed(current, alarm, ended)) {
        current.insert(event);
        sink.post({type, event});
    }
}

bool EventBook::drop(const EventRecord& dropped) {
    Lock lock(mutex);
    const EventRecordPtr held = takeOut(current, dropped);
    if (held)
        sink.post({ChangeType::forgotten, held});
    return held != nullptr;
}

void EventBook::beginReset() {
    Lock lock(mutex);
    reset.emplace(Reset{arrivals, {}});
}

void EventBook::replaceTarget(const std::string& target, std::span<const Event> events) {
    std::vector<EventRecordPtr> gone;  // outlives the lock, so that old events are freed outside
    {
        Lock lock(mutex);
        if (reset)
            reset->handedOver.insert(target);
        gone = eventsOf(target);
    }
    auto replacement = std::make_shared<Replacement>(Replacement{target, {}});
    KnownEvents known(gone);
    std::unordered_set<EventRecordPtr> kept(gone.begin(), gone.end());
    EventStore added;
    for (const Event& event : events) {
        std::optional<EventContent> content = contentOf(event);
        if (!content)
            continue;
        EventRecordPtr record = known.meet(std::move(*content), ++arrivals);
        replacement->events.push_back(record);
        if (kept.erase(record) == 0)
            added.insert(std::move(record));
    }
    gone.assign(kept.begin(), kept.end());
    if (gone.empty() && added.size() == 0)
        return;
    Lock lock(mutex);
    current.replace(gone, added);
    sink.post({.type = ChangeType::reset, .replacement = std::move(replacement)});
    forgetBeyondCapacity();
}

void EventBook::endReset() {
    std::vector<EventRecordPtr> dropped;  // outlives the lock
    Lock lock(mutex);
    const std::optional<Reset> ended = std::exchange(reset, std::nullopt);
    if (!ended)
        return;
    const auto targets = current.countsByTarget();
    for (const auto& [target, counts] : targets) {
        if (!ended->handedOver.contains(target))
            dropBefore(ended->since, target, dropped);
    }
    sink.post({.type = ChangeType::reset});
}

void EventBook::dropBefore(std::uint64_t arrival, const std::string& target,
                           std::vector<EventRecordPtr>& dropped) {
    auto rest = std::make_shared<Replacement>(Replacement{target, {}});
    const std::size_t before = dropped.size();
    for (EventRecordPtr& event : eventsOf(target)) {
        if (event->position.arrival > arrival) {
            rest->events.push_back(std::move(event));
            continue;
        }
        current.erase(event->id);
        dropped.push_back(std::move(event));
    }
    if (dropped.size() > before)
        sink.post({.type = ChangeType::reset, .replacement = std::move(rest)});
}

void EventBook::abandonReset() {
    Lock lock(mutex);
    reset.reset();
}

std::vector<EventRecordPtr> EventBook::eventsOf(const std::string& target) const {
    EventFilter filter;
    filter.target = target;
    return current.select(filter, 0, unlimited).events;
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
