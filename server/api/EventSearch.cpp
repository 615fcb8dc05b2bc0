#include "server/api/EventSearch.h"

#include <algorithm>
#include <limits>
#include <string>

#include "server/http/Response.h"
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
    query.allowOnly(
        {"target", "kind", "state", "severity", "text", "locale", "offset", "limit", "wait"});
    if (const std::string* const target = query.find("target"))
        filter.target = *target;
    filter.kind = choice<EventKind>(query, "kind",
                                    {{"alarm", EventKind::alarm}, {"message", EventKind::message}});
    filter.state = choice<EventState>(query, "state",
                                      {{"active", EventState::active},
                                       {"cleared", EventState::cleared},
                                       {"unconfirmed", EventState::unconfirmed}});
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

EventSearch::Result EventSearch::run(const EventBook& book, EventTextService& service) const {
    const bool isPage = text.empty();
    EventPage selected = book.select(filter, isPage ? offset : 0, isPage ? limit : unlimited);
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
        if (++result.total <= (isPage ? 0 : offset) || result.hits.size() == limit)
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
