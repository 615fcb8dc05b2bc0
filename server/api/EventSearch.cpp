#include "server/api/EventSearch.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>
#include <utility>

#include "server/events/EventOrigin.h"
#include "server/events/PageWindow.h"
#include "server/unicode/CaseFolding.h"

namespace hmi {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

/// What the row of an event shows, as it is compared. Those without texts stand by their class.
std::string nameOf(const EventSearch::Hit& hit) {
    if (hit.texts && !hit.texts->text.empty())
        return foldCase(hit.texts->text.view());
    const EventOrigin origin = originOf(*hit.event);
    const std::string id = std::to_string(origin.eventId.value_or(0));
    constexpr std::size_t digits = 10;
    return foldCase(origin.name + '\0' + origin.eventClass) + '\0' +
           std::string(digits - std::min(digits, id.size()), '0') + id;
}

bool isInOrder(const EventSearch::Hit& a, const EventSearch::Hit& b, EventOrder order) {
    using Hit = EventSearch::Hit;
    const auto priority = [](const Hit& hit) {
        return hit.event ? hit.event->priority : priorityOfRest;
    };
    const auto target = [](const Hit& hit) -> const std::string& {
        return hit.event ? hit.event->target : hit.gap->target;
    };
    const auto time = [](const Hit& hit) {
        return hit.event ? hit.event->position.time : hit.gap->from;
    };
    if (order == EventOrder::priority && priority(a) != priority(b))
        return priority(a) < priority(b);
    if (order == EventOrder::target && target(a) != target(b))
        return target(a) < target(b);
    return time(b) < time(a);
}

}  // namespace

EventSearch::Result EventSearch::page() const {
    if (!query.withGaps)
        return events(query.offset, query.limit);
    std::vector<Hit> gaps;
    for (GapPtr& gap : targets.gaps(query.filter.target, query.filter.from, query.filter.to))
        gaps.push_back({{}, {}, std::move(gap)});
    const auto before = [this](const Hit& a, const Hit& b) { return isBefore(a, b); };
    std::stable_sort(gaps.begin(), gaps.end(), before);
    const PageWindow window(query.offset, query.limit, gaps.size());
    Result result = events(window.first, window.size);
    result.total += gaps.size();
    result.hits = window.merge(std::move(result.hits), std::move(gaps), before);
    return result;
}

/// Of events and gaps. By priority gaps stand before all that needs no attention, by name and by
/// severity before all.
bool EventSearch::isBefore(const Hit& a, const Hit& b) const {
    const EventFilter& filter = query.filter;
    if (query.byName || filter.order == EventOrder::severity)
        return a.gap && !b.gap;
    return filter.reversed ? isInOrder(b, a, filter.order) : isInOrder(a, b, filter.order);
}

EventSearch::Result EventSearch::events(std::size_t first, std::size_t size) const {
    Result result;
    if (query.text.empty() && !query.byName) {
        EventPage selected = book.select(query.filter, first, size);
        result.total = selected.total;
        result.hits.reserve(selected.events.size());
        for (EventRecordPtr& event : selected.events)
            result.hits.push_back({std::move(event), {}});
        fetchTexts(result);
    } else {
        result = found();
        auto& hits = result.hits;
        const auto begin = hits.begin() + static_cast<std::ptrdiff_t>(std::min(first, hits.size()));
        hits.erase(hits.begin(), begin);
        hits.resize(std::min(size, hits.size()));
    }
    countPending(result);
    return result;
}

EventSearch::Result EventSearch::all() const {
    if (!query.text.empty())
        return found();
    EventPage selected = book.select(query.filter, 0, unlimited);
    Result result{selected.total, 0, {}};
    for (EventRecordPtr& event : selected.events)
        result.hits.push_back({std::move(event), {}});
    return result;
}

/// All that have the text, in their order. Pending are those that might have it.
EventSearch::Result EventSearch::found() const {
    Result result;
    EventPage selected = book.select(query.filter, 0, unlimited);
    result.hits.reserve(selected.events.size());
    for (EventRecordPtr& event : selected.events)
        result.hits.push_back({std::move(event), {}});
    fetchTexts(result);
    if (!query.text.empty())
        dropOthers(result);
    result.total = result.hits.size();
    if (query.byName)
        sortByName(result.hits);
    return result;
}

/// Those that do not have the text. None goes before all have been looked at: the finder knows texts
/// by their places.
void EventSearch::dropOthers(Result& result) const {
    TextFinder finder(query.text);
    std::vector<bool> hasText;
    hasText.reserve(result.hits.size());
    for (const Hit& hit : result.hits) {
        hasText.push_back(contains(hit, finder));
        result.textsPending += !hasText.back() && query.isLocalized() && !hit.texts ? 1U : 0U;
    }
    std::size_t next = 0;
    std::erase_if(result.hits, [&](const Hit&) { return !hasText[next++]; });
}

bool EventSearch::contains(const Hit& hit, TextFinder& finder) const {
    if (finder.isInFolded(hit.event->searchText(searchTexts)))
        return true;
    return hit.texts &&
           (finder.isIn(hit.texts->text.view()) || finder.isIn(hit.texts->parameters));
}

void EventSearch::sortByName(std::vector<Hit>& hits) const {
    std::vector<std::pair<std::string, Hit>> named;
    named.reserve(hits.size());
    for (Hit& hit : hits) {
        std::string name = nameOf(hit);
        named.emplace_back(std::move(name), std::move(hit));
    }
    std::stable_sort(named.begin(), named.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    if (query.nameReversed)
        std::reverse(named.begin(), named.end());
    std::transform(named.begin(), named.end(), hits.begin(),
                   [](auto& entry) { return std::move(entry.second); });
}

void EventSearch::addTexts(Result& result) const {
    fetchTexts(result);
    countPending(result);
}

void EventSearch::countPending(Result& result) const {
    if (!query.isLocalized())
        return;
    result.textsPending += static_cast<std::size_t>(std::count_if(
        result.hits.begin(), result.hits.end(), [](const Hit& hit) { return !hit.texts; }));
}

void EventSearch::fetchTexts(Result& result) const {
    if (!query.isLocalized())
        return;
    const auto end = Clock::now() + query.texts.wait;
    auto& hits = result.hits;
    const std::size_t portion = query.everyText ? EventTextService::maxAsked : hits.size();
    for (std::size_t first = 0; first < hits.size(); first += portion) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (first > 0 && left.count() <= 0)
            return;
        std::vector<EventRecordPtr> events;
        for (std::size_t i = first; i < std::min(first + portion, hits.size()); ++i)
            events.push_back(hits[i].event);
        std::vector<TextsPtr> texts = service.get(events, query.texts.locale, left);
        for (std::size_t i = 0; i < texts.size(); ++i)
            hits[first + i].texts = std::move(texts[i]);
    }
}

}  // namespace hmi
