#include "server/events/EventBook.h"

#include <limits>
#include <unordered_set>
#include <utility>

#include "server/events/KnownEvents.h"
#include "server/events/PageWindow.h"

namespace hmi {

using ZrHmiSrv::Alarm;
using ZrHmiSrv::Event;
using ZrHmiSrv::Message;

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

/// The alarm of the index with new content, at its old place in the list.
EventRecordPtr changed(const RecordIndex& index, const Alarm& alarm, bool ended) {
    const EventRecordPtr held = index.find({EventKind::alarm, alarm.id()});
    if (!held)
        return nullptr;
    const auto record = std::make_shared<EventRecord>(EventContent{alarm, {}},
                                                      held->position.arrival, ended || held->ended);
    record->confirmation = confirmationOf(*record, *held);
    return record;
}

std::vector<EventRecordPtr> eventsOf(const RecordIndex& index, const std::string& target) {
    EventFilter filter;
    filter.target = target;
    return index.select(filter, 0, unlimited).events;
}

/// The alarms of these as they were when their target system was lost.
RecordIndex lostAlarms(const std::unordered_set<EventRecordPtr>& vanished) {
    RecordIndex lost;
    for (const EventRecordPtr& event : vanished) {
        if (event->kind != EventKind::alarm)
            continue;
        const auto record = std::make_shared<EventRecord>(*event);
        record->lastKnownSince = ZrHmiSrv::Timestamp::now();
        lost.insert(record);
    }
    return lost;
}

/// The event itself when that says nothing new. `held`: as readers know it, or null.
EventRecordPtr withConfirmationOf(const EventRecordPtr& event, const EventRecordPtr& held) {
    ConfirmationPtr confirmation = held ? confirmationOf(*event, *held) : nullptr;
    if (!confirmation || confirmation == event->confirmation)
        return event;
    const auto record = std::make_shared<EventRecord>(*event);
    record->confirmation = std::move(confirmation);
    return record;
}

EventRecordPtr takeOut(RecordIndex& index, const EventRecord& dropped) {
    EventRecordPtr held =
        dropped.kind == EventKind::alarm ? index.find(dropped.id) : index.findSame(dropped);
    if (held)
        index.erase(held->id);
    return held;
}

}  // namespace

void EventBook::raise(Alarm alarm) {
    const auto event =
        std::make_shared<EventRecord>(EventContent{std::move(alarm), {}}, ++arrivals);
    Lock lock(mutex);
    if (const EventRecordPtr before = known(event->id))
        event->confirmation = confirmationOf(*event, *before);
    lastKnown.erase(event->id);
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
    while (lastKnown.size() > 0 && current.size() + lastKnown.size() > capacity)
        lastKnown.erase(lastKnown.oldest()->id);
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

void EventBook::replaceTarget(const std::string& target, std::span<const Event> events,
                              bool isImported) {
    std::vector<EventRecordPtr> gone;  // outlives the lock, so that old events are freed outside
    std::vector<EventRecordPtr> before;
    std::uint64_t modifiedBefore = 0;
    {
        Lock lock(mutex);
        modifiedBefore = modifications;
        if (reset)
            reset->handedOver.insert(target);
        gone = eventsOf(current, target);
        before = eventsOf(lastKnown, target);
    }
    before.insert(before.end(), gone.begin(), gone.end());
    auto replacement = std::make_shared<Replacement>(Replacement{target, {}});
    KnownEvents known(before);
    std::unordered_set<EventRecordPtr> vanished(gone.begin(), gone.end());
    std::unordered_set<std::int64_t> here;
    RecordIndex added;
    for (const Event& event : events) {
        std::optional<EventContent> content = contentOf(event);
        if (!content)
            continue;
        EventRecordPtr record = known.meet(std::move(*content), ++arrivals);
        if (record->kind == EventKind::alarm)
            here.insert(record->id.number);
        replacement->events.push_back(record);
        if (vanished.erase(record) == 0)
            added.insert(std::move(record));
    }
    gone.assign(vanished.begin(), vanished.end());
    std::erase_if(vanished, [&](const auto& event) { return here.contains(event->id.number); });
    RecordIndex lost;
    if (!isImported)
        lost = lostAlarms(vanished);
    Lock lock(mutex);
    if (modifications != modifiedBefore)
        keepConfirmations(*replacement, added, lost);
    const auto forgotten =
        isImported ? eventsOf(lastKnown, target) : std::vector<EventRecordPtr>();
    // That there is nothing is news once.
    const bool isFirst = isImported && complete.insert(target).second;
    if (gone.empty() && added.size() == 0 && forgotten.empty() && !isFirst)
        return;
    replacement->isComplete = isImported;
    auto ofCurrent = current.prepare(gone, added);
    auto ofLastKnown = lastKnown.prepare(forgotten, lost);
    // From here on nothing throws.
    current.apply(std::move(ofCurrent));
    lastKnown.apply(std::move(ofLastKnown));
    for (const EventRecordPtr& event : replacement->events)
        lastKnown.erase(event->id);
    sink.post({.type = ChangeType::reset, .replacement = std::move(replacement)});
    forgetBeyondCapacity();
}

/// What confirmations have come to since the hand-over was looked at.
void EventBook::keepConfirmations(Replacement& replacement, RecordIndex& added,
                                  RecordIndex& lost) const {
    for (EventRecordPtr& event : replacement.events) {
        const EventRecordPtr kept = withConfirmationOf(event, known(event->id));
        if (kept != event && added.find(event->id))
            added.insert(kept);
        event = kept;
    }
    for (const EventRecordPtr& event : eventsOf(lost, replacement.target))
        lost.insert(withConfirmationOf(event, known(event->id)));
}

/// True when there was something to forget.
bool EventBook::forgetLastKnown(const std::string& target) {
    const std::vector<EventRecordPtr> forgotten = eventsOf(lastKnown, target);
    for (const EventRecordPtr& event : forgotten)
        lastKnown.erase(event->id);
    return !forgotten.empty();
}

void EventBook::dropLastKnown(const std::string& target) {
    Lock lock(mutex);
    if (!forgetLastKnown(target))
        return;
    auto rest = std::make_shared<Replacement>(Replacement{target, eventsOf(current, target)});
    sink.post({.type = ChangeType::reset, .replacement = std::move(rest)});
}

void EventBook::endReset() {
    std::vector<EventRecordPtr> dropped;  // outlives the lock
    Lock lock(mutex);
    const std::optional<Reset> ended = std::exchange(reset, std::nullopt);
    if (!ended)
        return;
    const auto lost = lastKnown.countsByTarget();
    for (const auto& [target, counts] : lost) {
        if (!ended->handedOver.contains(target))
            forgetLastKnown(target);
    }
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
    for (EventRecordPtr& event : eventsOf(current, target)) {
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

EventRecordPtr EventBook::modify(EventId id, ChangeType type, const Modify& modify) {
    Lock lock(mutex);
    const EventRecordPtr held = known(id);
    const EventRecordPtr modified = held ? modify(*held) : nullptr;
    if (!modified)
        return held;
    (held->lastKnownSince.isset() ? lastKnown : current).insert(modified);
    ++modifications;
    sink.post({type, modified});
    return modified;
}

EventRecordPtr EventBook::known(EventId id) const {
    EventRecordPtr held = current.find(id);
    return held ? held : lastKnown.find(id);
}

EventRecordPtr EventBook::find(EventId id) const {
    Lock lock(mutex);
    return current.find(id);
}

EventRecordPtr EventBook::findLastKnown(EventId id) const {
    Lock lock(mutex);
    return lastKnown.find(id);
}

EventPage EventBook::select(const EventFilter& filter, std::size_t offset,
                            std::size_t limit) const {
    Lock lock(mutex);
    if (!filter.lastKnown || lastKnown.size() == 0)
        return current.select(filter, offset, limit);
    EventPage lost = lastKnown.select(filter, 0, unlimited);
    const PageWindow window(offset, limit, lost.events.size());
    EventPage page = current.select(filter, window.first, window.size);
    return {page.total + lost.total,
            window.merge(std::move(page.events), std::move(lost.events),
                         [&](const auto& a, const auto& b) { return filter.isBefore(*a, *b); })};
}

std::map<std::string, TargetCounts> EventBook::countsByTarget() const {
    Lock lock(mutex);
    return current.countsByTarget();
}

Attention EventBook::attention(const std::optional<std::string>& target,
                               bool withLastKnown) const {
    Lock lock(mutex);
    Attention attention = current.attention(target);
    if (withLastKnown)
        attention.add(lastKnown.attention(target));
    return attention;
}

}  // namespace hmi
