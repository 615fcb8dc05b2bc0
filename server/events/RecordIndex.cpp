#include "server/events/RecordIndex.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <tuple>
#include <utility>

#include "server/events/EventMerge.h"

namespace hmi {

using ZrHmiSrv::Timestamp;

namespace {

constexpr std::uint64_t lastArrival = std::numeric_limits<std::uint64_t>::max();

/// The part of a cell that lies within the filter's time.
EventMerge::Part partOf(const EventSequence& events, const EventFilter& filter) {
    const std::size_t first = filter.from ? events.countOlder({*filter.from, 0}) : 0;
    const std::size_t last =
        filter.to ? events.countOlder({*filter.to, lastArrival}) : events.size();
    return {&events, first, std::max(first, last)};
}

/// Before what stands behind it in the order of the filter; equal where time decides.
std::uint64_t rankOf(const EventShape& shape, EventOrder order, std::size_t target) {
    switch (order) {
        case EventOrder::time:
            break;
        case EventOrder::priority:
            return shape.priority;
        case EventOrder::target:
            return target;
        case EventOrder::severity:
            return shape.severity == noSeverity ? noSeverity : noSeverity - 1 - shape.severity;
    }
    return 0;
}

std::size_t levelOf(const EventShape& shape) {
    constexpr std::uint32_t highest = std::tuple_size_v<Attention::BySeverity> - 1;
    return shape.severity == noSeverity ? 0 : std::min(shape.severity, highest);
}

}  // namespace

void Attention::add(const Attention& other) {
    for (std::size_t level = 0; level < active.size(); ++level) {
        active[level] += other.active[level];
        unconfirmed[level] += other.unconfirmed[level];
    }
    const Timestamp oldest = other.oldestUnconfirmed;
    if (oldest.isset() && (!oldestUnconfirmed.isset() || oldest < oldestUnconfirmed))
        oldestUnconfirmed = oldest;
}

/// Negative numbers name no message, so that each id has a key of its own.
std::uint64_t RecordIndex::keyOf(EventId id) noexcept {
    return static_cast<std::uint64_t>(id.number) * 2 + (id.kind == EventKind::message ? 1 : 0);
}

EventRecordPtr RecordIndex::find(EventId id) const {
    const auto found = byId.find(keyOf(id));
    return found == byId.end() || found->second->id != id ? nullptr : found->second;
}

EventRecordPtr RecordIndex::findSame(const EventRecord& message) const {
    EventRecordPtr same;
    const auto found = targets.find(message.target);
    if (found == targets.end())
        return same;
    for (const Cell& cell : found->second) {
        if (cell.shape.kind != EventKind::message)
            continue;
        const Timestamp time = message.position.time;
        const auto last = cell.events.at(cell.events.countOlder({time, lastArrival}));
        for (auto event = cell.events.at(cell.events.countOlder({time, 0})); event != last; ++event)
            if (isSameMessage(**event, message)) {
                if (!same || (*event)->position.arrival < same->position.arrival)
                    same = *event;
                break;
            }
    }
    return same;
}

EventRecordPtr RecordIndex::oldest() const {
    EventRecordPtr oldest;
    for (const auto& [target, cells] : targets)
        for (const Cell& cell : cells)
            if (const auto first = cell.events.begin();
                !oldest || oldest->position < first.position())
                oldest = *first;
    return oldest;
}

void RecordIndex::insertInto(Cells& cells, const EventRecordPtr& event) {
    auto cell = std::find_if(cells.begin(), cells.end(),
                             [&](const Cell& held) { return held.shape == *event; });
    const bool isNew = cell == cells.end();
    if (isNew)
        cell = cells.emplace(cells.end(), *event);
    try {
        cell->events.insert(event);
    } catch (...) {
        if (isNew)
            cells.pop_back();
        throw;
    }
}

void RecordIndex::eraseFrom(Cells& cells, const EventRecord& event) noexcept {
    const auto cell = std::find_if(cells.begin(), cells.end(),
                                   [&](const Cell& held) { return held.shape == event; });
    cell->events.erase(event);
    if (!cell->events.empty())
        return;
    if (cell != std::prev(cells.end()))
        *cell = std::move(cells.back());
    cells.pop_back();
}

void RecordIndex::eraseFromTarget(const EventRecord& event) noexcept {
    const auto target = targets.find(event.target);
    eraseFrom(target->second, event);
    if (target->second.empty())
        targets.erase(target);
}

void RecordIndex::insert(EventRecordPtr event) {
    const auto [slot, isNew] = byId.try_emplace(keyOf(event->id));
    try {
        const auto target = targets.try_emplace(event->target).first;
        try {
            insertInto(target->second, event);
        } catch (...) {
            if (target->second.empty())
                targets.erase(target);
            throw;
        }
    } catch (...) {
        if (isNew)
            byId.erase(slot);
        throw;
    }
    const EventRecordPtr replaced = std::exchange(slot->second, std::move(event));
    if (replaced)
        eraseFromTarget(*replaced);
}

void RecordIndex::erase(EventId id) noexcept {
    const auto found = byId.find(keyOf(id));
    if (found == byId.end() || found->second->id != id)
        return;
    const EventRecordPtr erased = std::move(found->second);
    byId.erase(found);
    eraseFromTarget(*erased);
}

RecordIndex::Prepared RecordIndex::prepare(const std::vector<EventRecordPtr>& gone,
                                         const RecordIndex& added) {
    Prepared prepared(gone, added);
    Targets& changed = prepared.changed;
    for (const auto& [target, cells] : added.targets) {
        const auto held = targets.find(target);
        changed.emplace(target, held == targets.end() ? Cells() : held->second);
    }
    const auto leave = [&](EventId id) {
        const EventRecordPtr held = find(id);
        const auto cells = held ? changed.find(held->target) : changed.end();
        if (cells != changed.end())
            eraseFrom(cells->second, *held);
    };
    for (const EventRecordPtr& event : gone)
        if (!added.find(event->id))
            leave(event->id);
    for (const auto& [target, cells] : added.targets)
        for (const Cell& cell : cells)
            for (const EventRecordPtr& event : cell.events) {
                leave(event->id);
                insertInto(changed[target], event);
            }
    byId.reserve(byId.size() + added.size());
    return prepared;
}

void RecordIndex::apply(Prepared prepared) noexcept {
    const RecordIndex& added = prepared.added;
    Targets& changed = prepared.changed;
    for (const auto& [key, event] : added.byId) {
        EventRecordPtr& slot = byId[key];
        if (slot && !changed.contains(slot->target))
            eraseFromTarget(*slot);
        slot = event;
    }
    for (const EventRecordPtr& event : prepared.gone) {
        const EventRecordPtr held = added.find(event->id) ? nullptr : find(event->id);
        if (!held)
            continue;
        byId.erase(keyOf(event->id));
        if (!changed.contains(held->target))
            eraseFromTarget(*held);
    }
    for (const auto& [target, cells] : changed)
        targets.erase(target);
    targets.merge(changed);
}

EventPage RecordIndex::select(const EventFilter& filter, std::size_t offset,
                             std::size_t limit) const {
    EventMerge merge;
    std::size_t place = 0;
    for (const auto& [target, cells] : targets) {
        ++place;
        if (filter.target && *filter.target != target)
            continue;
        for (const Cell& cell : cells)
            if (filter.matches(cell.shape))
                merge.add(rankOf(cell.shape, filter.order, place), partOf(cell.events, filter));
    }
    return {merge.size(), filter.reversed ? merge.pageFromEnd(offset, limit)
                                          : merge.page(offset, limit)};
}

std::map<std::string, TargetCounts> RecordIndex::countsByTarget() const {
    std::map<std::string, TargetCounts> counts;
    for (const auto& [target, cells] : targets) {
        TargetCounts& of = counts[target];
        for (const Cell& cell : cells) {
            const std::size_t size = cell.events.size();
            (cell.shape.kind == EventKind::alarm ? of.alarms : of.messages) += size;
            of.active += cell.shape.life == EventLife::active ? size : 0;
            of.unconfirmed += cell.shape.unconfirmed ? size : 0;
        }
    }
    return counts;
}

Attention RecordIndex::attention(const std::optional<std::string>& target) const {
    Attention attention;
    for (const auto& [name, cells] : targets) {
        if (target && *target != name)
            continue;
        for (const auto& [shape, events] : cells) {
            Attention ofCell;
            if (shape.life == EventLife::active)
                ofCell.active[levelOf(shape)] = events.size();
            if (shape.unconfirmed) {
                ofCell.unconfirmed[levelOf(shape)] = events.size();
                ofCell.oldestUnconfirmed = events.begin().position().time;
            }
            attention.add(ofCell);
        }
    }
    return attention;
}

}  // namespace hmi
