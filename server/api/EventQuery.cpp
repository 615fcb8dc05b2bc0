#include "server/api/EventQuery.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

#include "server/http/Response.h"
#include "server/json/IsoTime.h"
#include "server/unicode/CaseFolding.h"

namespace hmi {

namespace {

constexpr std::uint64_t defaultWait = 300;   // milliseconds
constexpr std::size_t maxLocaleLength = 84;  // no platform knows longer names

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

}  // namespace

std::optional<ZrHmiSrv::Timestamp> timeOf(const Query& query, std::string_view name) {
    const std::string* const text = query.find(name);
    const auto time = text ? parseIsoTime(*text) : std::nullopt;
    if (text && !time)
        throw RequestError(400, std::string(name) + " is a time like 2024-05-01T06:07:08.1234567Z");
    return time;
}

TextWish::TextWish(const Query& query) : locale(textOf(query, "locale")) {
    if (locale.size() > maxLocaleLength)
        throw RequestError(400, "locale is too long");
    constexpr auto longest = static_cast<std::uint64_t>(maxWait.count());
    wait = std::chrono::milliseconds(std::min(query.number("wait", defaultWait), longest));
}

EventQuery::EventQuery(const Query& query, Query::Names further, std::uint64_t usualLimit)
    : texts(query) {
    query.allowOnly({"target", "kind", "state", "severity", "text", "locale", "offset", "limit",
                     "wait", "order", "from", "to", "lastKnown", "gaps"},
                    further);
    if (const std::string* const target = query.find("target"))
        filter.target = *target;
    filter.kind = choice<EventKind>(query, "kind",
                                    {{"alarm", EventKind::alarm}, {"message", EventKind::message}});
    filter.state = choice<EventState>(query, "state",
                                      {{"active", EventState::active},
                                       {"cleared", EventState::cleared},
                                       {"unconfirmed", EventState::unconfirmed}});
    filter.from = timeOf(query, "from");
    filter.to = timeOf(query, "to");
    filter.lastKnown = query.flag("lastKnown");
    withGaps = query.flag("gaps");
    constexpr std::uint64_t highest = std::numeric_limits<std::uint32_t>::max();
    filter.severity = static_cast<std::uint32_t>(std::min(query.number("severity", 0), highest));
    readOrder(query);
    text = foldCase(textOf(query, "text"));
    offset = static_cast<std::size_t>(query.number("offset", 0));
    limit = static_cast<std::size_t>(std::min(query.number("limit", usualLimit), maxLimit));
}

void EventQuery::readOrder(const Query& query) {
    const std::string asked = textOf(query, "order");
    const bool reversed = asked.starts_with('-');
    const std::string_view name = std::string_view(asked).substr(reversed ? 1 : 0);
    constexpr std::pair<std::string_view, EventOrder> orders[] = {
        {"time", EventOrder::time},
        {"priority", EventOrder::priority},
        {"target", EventOrder::target},
        {"severity", EventOrder::severity}};
    const auto found = std::find_if(std::begin(orders), std::end(orders),
                                    [&](const auto& order) { return order.first == name; });
    if (found != std::end(orders)) {
        filter.order = found->second;
        filter.reversed = reversed;
    } else if (name == "name") {
        byName = true;
        nameReversed = reversed;
    } else if (!asked.empty()) {
        throw RequestError(400, "order cannot be " + asked);
    }
}

}  // namespace hmi
