#include "server/events/EventStore.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <optional>
#include <tuple>
#include <variant>

namespace hmi {

using ZrHmiSrv::Timestamp;

namespace {

/// A stretch of one ranked index, as ranks.
template <class Index>
struct Stretch {
    const Index* index;
    std::size_t first;
    std::size_t last;

    std::size_t size() const { return last - first; }

    EventPage page(bool reversed, std::size_t offset, std::size_t limit) const {
        EventPage page{size(), {}};
        offset = std::min(offset, size());
        const std::size_t count = std::min(limit, size() - offset);
        page.events.reserve(count);
        walk(reversed, offset, count, [&](const auto& event) { page.events.push_back(event); });
        return page;
    }

    EventPage page(const EventFilter& filter, std::size_t offset, std::size_t limit) const {
        EventPage page;
        walk(filter.reversed, 0, size(), [&](const auto& event) {
            if (!filter.matches(*event))
                return;
            if (page.total++ >= offset && page.events.size() < limit)
                page.events.push_back(event);
        });
        return page;
    }

private:
    template <class Take>
    void walk(bool reversed, std::size_t offset, std::size_t count, Take take) const {
        if (reversed)
            std::for_each_n(std::make_reverse_iterator(index->nth(last - offset)), count, take);
        else
            std::for_each_n(index->nth(first + offset), count, take);
    }
};

/// The places between which a filter's time lies.
struct Between {
    explicit Between(const EventFilter& filter)
        : first{filter.to.value_or(Timestamp(maxTime)), std::numeric_limits<std::uint64_t>::max()},
          last{filter.from.value_or(Timestamp(minTime)), 0} {}

    static constexpr auto maxTime = std::numeric_limits<std::int64_t>::max();
    static constexpr auto minTime = std::numeric_limits<std::int64_t>::min();
    EventPosition first;
    EventPosition last;
};

template <class Index>
Stretch<Index> stretchOf(const Index& index, std::size_t first, std::size_t last) {
    return {&index, first, std::max(first, last)};
}

template <class Index>
Stretch<Index> stretchOf(const Index& index, const Between& between) {
    return stretchOf(index, index.lower_bound_rank(between.first),
                     index.lower_bound_rank(between.last));
}

template <class Index, class Key>
Stretch<Index> stretchOf(const Index& index, const Key& key, const Between& between) {
    return stretchOf(index, index.lower_bound_rank(std::make_tuple(key, between.first)),
                     index.lower_bound_rank(std::make_tuple(key, between.last)));
}

/// Whether the filter selects all events of the smallest stretch that one criterion gives.
bool isOneCriterion(const EventFilter& filter) {
    return filter.criteria() == 0 || (filter.criteria() == 1 && filter.severity == 0);
}

/// Adding the largest number takes one away: unsigned numbers wrap around.
constexpr std::size_t step(bool added) {
    return added ? 1 : static_cast<std::size_t>(-1);
}

std::size_t levelOf(const EventRecord& event) {
    constexpr std::uint32_t highest = std::tuple_size_v<Attention::BySeverity> - 1;
    return event.severity == noSeverity ? 0 : std::min(event.severity, highest);
}

void count(Attention& attention, const EventRecord& event, bool added) {
    if (event.life == EventLife::active)
        attention.active[levelOf(event)] += step(added);
    if (event.unconfirmed)
        attention.unconfirmed[levelOf(event)] += step(added);
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

EventRecordPtr EventStore::find(EventId id) const {
    const auto found = records.get<ById>().find(id);
    return found == records.get<ById>().end() ? nullptr : *found;
}

EventRecordPtr EventStore::findSame(const EventRecord& message) const {
    const auto [first, last] =
        records.get<ByContent>().equal_range(std::make_tuple(message.contentHash));
    for (auto position = last; position != first;) {
        if (isSameMessage(**--position, message))
            return *position;
    }
    return nullptr;
}

EventRecordPtr EventStore::oldest() const {
    return records.empty() ? nullptr : *records.get<ByPosition>().rbegin();
}

void EventStore::insert(EventRecordPtr event) {
    erase(event->id);
    if (records.insert(event).second)
        count(*event, true);
}

void EventStore::erase(EventId id) {
    auto& byId = records.get<ById>();
    const auto found = byId.find(id);
    if (found == byId.end())
        return;
    const EventRecordPtr erased = *found;
    byId.erase(found);
    count(*erased, false);
}

void EventStore::makeRoomFor(const EventStore& added) {
    records.get<ById>().reserve(records.size() + added.size());
}

void EventStore::replace(const std::vector<EventRecordPtr>& gone, EventStore& added) {
    makeRoomFor(added);
    // Nothing below needs memory: the other store's nodes move over.
    for (const EventRecordPtr& event : gone)
        erase(event->id);
    for (const EventRecordPtr& event : added.records.get<ByPosition>())
        erase(event->id);
    targets.merge(added.targets);
    for (auto& [target, ofTarget] : added.targets)  // those that have events here, too
        targets.find(target)->second.add(ofTarget);
    all.add(added.all);
    records.get<ByPosition>().merge(added.records.get<ByPosition>());
    added.targets.clear();
    added.all = {};
}

/// What `serve` makes of the smallest stretch that one of the criteria gives.
template <class Serve>
auto EventStore::narrowest(const EventFilter& filter, Serve serve) const {
    using Position = Stretch<Records::index<ByPosition>::type>;
    using Target = Stretch<Records::index<ByTarget>::type>;
    using Kind = Stretch<Records::index<ByKind>::type>;
    using Life = Stretch<Records::index<ByLife>::type>;
    using Confirmation = Stretch<Records::index<ByConfirmation>::type>;

    const Between between(filter);
    std::variant<Position, Target, Kind, Life, Confirmation> smallest =
        stretchOf(records.get<ByPosition>(), between);
    const auto offer = [&](auto stretch) {
        if (stretch.size() <= std::visit([](const auto& s) { return s.size(); }, smallest))
            smallest = stretch;
    };
    if (filter.target)
        offer(stretchOf(records.get<ByTarget>(), *filter.target, between));
    if (filter.kind)
        offer(stretchOf(records.get<ByKind>(), *filter.kind, between));
    if (filter.state == EventState::unconfirmed)
        offer(stretchOf(records.get<ByConfirmation>(), true, between));
    else if (filter.state)
        offer(stretchOf(records.get<ByLife>(),
                        filter.state == EventState::active ? EventLife::active : EventLife::cleared,
                        between));
    return std::visit(serve, smallest);
}

EventPage EventStore::select(const EventFilter& filter, std::size_t offset,
                             std::size_t limit) const {
    if (filter.order != EventOrder::time)
        return selectSorted(filter, offset, limit);
    return narrowest(filter, [&](const auto& stretch) {
        return isOneCriterion(filter) ? stretch.page(filter.reversed, offset, limit)
                                      : stretch.page(filter, offset, limit);
    });
}

EventPage EventStore::selectSorted(const EventFilter& filter, std::size_t offset,
                                   std::size_t limit) const {
    const auto& byPriority = records.get<ByPriority>();
    const auto& byTarget = records.get<ByTarget>();
    const bool isAnyTime = !filter.from && !filter.to;
    const bool isAll = isAnyTime && filter.criteria() == 0;
    const bool isPriority = filter.order == EventOrder::priority;
    if (isAll && filter.order == EventOrder::target)
        return stretchOf(byTarget, 0, byTarget.size()).page(filter.reversed, offset, limit);
    if (isAll && isPriority)
        return stretchOf(byPriority, 0, byPriority.size()).page(filter.reversed, offset, limit);
    if (isPriority && isAnyTime && filter.criteria() == 1 &&
        filter.state == EventState::unconfirmed)
        return stretchOf(byPriority, 0,
                         byPriority.lower_bound_rank(std::make_tuple(priorityOfConfirmed)))
            .page(filter.reversed, offset, limit);
    EventPage page = narrowest(filter, [&](const auto& stretch) {
        return stretch.page(filter, 0, std::numeric_limits<std::size_t>::max());
    });
    auto& events = page.events;
    offset = std::min(offset, events.size());
    const auto at = [&](std::size_t index) {
        return events.begin() + static_cast<std::ptrdiff_t>(std::min(index, events.size()));
    };
    const auto last = at(offset + std::min(limit, page.total));
    std::partial_sort(events.begin(), last, events.end(),
                      [&](const auto& a, const auto& b) { return filter.isBefore(*a, *b); });
    events.erase(last, events.end());
    events.erase(events.begin(), at(offset));
    return page;
}

std::map<std::string, TargetCounts> EventStore::countsByTarget() const {
    std::map<std::string, TargetCounts> counts;
    for (const auto& [target, ofTarget] : targets)
        counts.emplace_hint(counts.end(), target, ofTarget.counts);
    return counts;
}

Attention EventStore::attention(const std::optional<std::string>& target) const {
    Attention attention = all;
    if (!target) {
        const auto& byConfirmation = records.get<ByConfirmation>();
        if (!byConfirmation.empty() && (*byConfirmation.rbegin())->unconfirmed)
            attention.oldestUnconfirmed = (*byConfirmation.rbegin())->position.time;
        return attention;
    }
    const auto found = targets.find(*target);
    if (found == targets.end())
        return {};
    attention = found->second.attention;
    if (!found->second.unconfirmed.empty())
        attention.oldestUnconfirmed = found->second.unconfirmed.rbegin()->time;
    return attention;
}

void EventStore::OfTarget::add(OfTarget& other) {
    counts.alarms += other.counts.alarms;
    counts.messages += other.counts.messages;
    counts.active += other.counts.active;
    counts.unconfirmed += other.counts.unconfirmed;
    attention.add(other.attention);
    unconfirmed.merge(other.unconfirmed);
}

void EventStore::count(const EventRecord& event, bool added) {
    const auto entry = targets.try_emplace(event.target).first;
    auto& [of, attention, unconfirmed] = entry->second;
    (event.kind == EventKind::alarm ? of.alarms : of.messages) += step(added);
    if (event.life == EventLife::active)
        of.active += step(added);
    if (event.unconfirmed) {
        of.unconfirmed += step(added);
        added ? void(unconfirmed.insert(event.position)) : void(unconfirmed.erase(event.position));
    }
    hmi::count(attention, event, added);
    hmi::count(all, event, added);
    if (of.alarms + of.messages == 0)
        targets.erase(entry);
}

}  // namespace hmi
