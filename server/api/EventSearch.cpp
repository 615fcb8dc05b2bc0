#include "server/api/EventSearch.h"

#include <algorithm>
#include <limits>
#include <string>

#include "server/events/PageWindow.h"
#include "server/http/Response.h"
#include "server/json/IsoTime.h"
#include "server/json/Utf8.h"

namespace hmi {

using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

constexpr std::uint64_t defaultLimit = 100;
constexpr std::uint64_t maxLimit = 100'000;
constexpr std::uint64_t defaultWait = 300;  // milliseconds
constexpr std::uint64_t maxWait = 5000;
constexpr std::size_t maxLocaleLength = 84;  // no platform knows longer names
constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

/// The choice of that name; throws RequestError 400 when there is none.
template <class T>
std::optional<T> choice(const Query& query, std::string_view parameter,
                        std::initializer_list<std::pair<std::string_view, T>> choices) {
    const std::string* const chosen = query.find(parameter);
    if (!chosen)
        return std::nullopt;
    for (const auto& [name, value] : choices) {
        if (name == *chosen)
            return value;
    }
    throw RequestError(400, std::string(parameter) + " cannot be " + *chosen);
}

std::optional<ZrHmiSrv::Timestamp> timeOf(const Query& query, std::string_view name) {
    const std::string* const text = query.find(name);
    const auto time = text ? parseIsoTime(*text) : std::nullopt;
    if (text && !time)
        throw RequestError(400, std::string(name) + " is a time like 2024-05-01T06:07:08.1234567Z");
    return time;
}

bool isWanted(const Query& query, std::string_view name) {
    return choice<bool>(query, name, {{"0", false}, {"1", true}}).value_or(false);
}

std::string textOf(const Query& query, std::string_view name) {
    const std::string* const value = query.find(name);
    return value ? *value : std::string();
}

bool contains(std::string_view text, std::string_view lower) {
    return toLowerAscii(text).find(lower) != std::string::npos;
}

bool containsText(const EventRecord& event, std::string_view lower) {
    if (contains(event.event().name().view(), lower))
        return true;
    const Value& parameters = event.event().payload();
    for (auto entry = parameters.begin(); entry != parameters.end(); ++entry) {
        if (entry->type() == ValueType::string && contains(entry->get_text().view(), lower))
            return true;
    }
    return false;
}

}  // namespace

EventSearch::EventSearch(const Query& query) {
    query.allowOnly({"target", "kind", "state", "severity", "text", "locale", "offset", "limit",
                     "wait", "order", "from", "to", "lastKnown", "gaps"});
    if (const std::string* const target = query.find("target"))
        filter.target = *target;
    filter.kind = choice<EventKind>(query, "kind",
                                    {{"alarm", EventKind::alarm}, {"message", EventKind::message}});
    filter.state = choice<EventState>(query, "state",
                                      {{"active", EventState::active},
                                       {"cleared", EventState::cleared},
                                       {"unconfirmed", EventState::unconfirmed}});
    filter.order =
        choice<EventOrder>(query, "order",
                           {{"time", EventOrder::time}, {"priority", EventOrder::priority}})
            .value_or(EventOrder::time);
    filter.from = timeOf(query, "from");
    filter.to = timeOf(query, "to");
    filter.lastKnown = isWanted(query, "lastKnown");
    withGaps = isWanted(query, "gaps");
    constexpr std::uint64_t highest = std::numeric_limits<std::uint32_t>::max();
    filter.severity = static_cast<std::uint32_t>(std::min(query.number("severity", 0), highest));
    text = toLowerAscii(textOf(query, "text"));
    locale = textOf(query, "locale");
    if (locale.size() > maxLocaleLength)
        throw RequestError(400, "locale is too long");
    wait = std::chrono::milliseconds(std::min(query.number("wait", defaultWait), maxWait));
    offset = static_cast<std::size_t>(query.number("offset", 0));
    limit = static_cast<std::size_t>(std::min(query.number("limit", defaultLimit), maxLimit));
}

EventSearch::Result EventSearch::run(const EventBook& book, const TargetBook& targets,
                                     EventTextService& service) const {
    if (!withGaps)
        return select(book, service, offset, limit);
    std::vector<Hit> gaps;
    for (GapPtr& gap : targets.gaps(filter.target, filter.from, filter.to))
        gaps.push_back({{}, {}, std::move(gap)});
    const PageWindow window(offset, limit, gaps.size());
    Result result = select(book, service, window.first, window.size);
    result.total += gaps.size();
    result.hits = window.merge(result.hits, gaps,
                               [this](const Hit& a, const Hit& b) { return isBefore(a, b); });
    return result;
}

/// Gaps stand among the events by time, and before all that needs no attention by priority.
bool EventSearch::isBefore(const Hit& a, const Hit& b) const {
    if (a.event && b.event)
        return filter.isBefore(*a.event, *b.event);
    const auto priority = [this](const Hit& hit) {
        return filter.order == EventOrder::time ? 0
               : hit.event                      ? hit.event->priority
                                                : priorityOfRest;
    };
    const auto time = [](const Hit& hit) {
        return hit.event ? hit.event->position.time : hit.gap->from;
    };
    return priority(a) != priority(b) ? priority(a) < priority(b) : time(b) < time(a);
}

EventSearch::Result EventSearch::select(const EventBook& book, EventTextService& service,
                                        std::size_t first, std::size_t size) const {
    const bool isPage = text.empty();
    EventPage selected = book.select(filter, isPage ? first : 0, isPage ? size : unlimited);
    std::vector<TextsPtr> texts = textsOf(selected.events, service);
    Result result;
    for (std::size_t i = 0; i < selected.events.size(); ++i) {
        const EventRecord& event = *selected.events[i];
        const bool isPending = isLocalized() && !texts[i];
        if (!isPage && !containsText(event, text) &&
            !(texts[i] && contains(texts[i]->text.view(), text))) {
            result.textsPending += isPending ? 1 : 0;  // it might contain the text
            continue;
        }
        if (++result.total <= (isPage ? 0 : first) || result.hits.size() == size)
            continue;
        result.textsPending += isPending ? 1 : 0;
        result.hits.push_back({std::move(selected.events[i]), std::move(texts[i])});
    }
    if (isPage)
        result.total = selected.total;
    return result;
}

std::vector<TextsPtr> EventSearch::textsOf(const std::vector<EventRecordPtr>& events,
                                           EventTextService& service) const {
    return isLocalized() ? service.get(events, locale, wait) : std::vector<TextsPtr>(events.size());
}

}  // namespace hmi
