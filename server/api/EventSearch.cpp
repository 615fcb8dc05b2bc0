#include "server/api/EventSearch.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <set>
#include <string>

#include "server/http/Response.h"
#include "server/json/Utf8.h"

namespace hmi {

using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

constexpr std::uint64_t defaultLimit = 100;
constexpr std::uint64_t maxLimit = 100'000;
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
    query.allowOnly({"target", "kind", "state", "severity", "text", "locale", "offset", "limit"});
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
    offset = static_cast<std::size_t>(query.number("offset", 0));
    limit = static_cast<std::size_t>(std::min(query.number("limit", defaultLimit), maxLimit));
}

/// The texts of one search. A target system that keeps us waiting in vain is not asked again, so
/// that one whose runtime hangs costs one time-out, not one for each of its events.
class EventSearch::Texts {
public:
    Texts(ExtensionCalls& extension, const std::string& locale)
        : extension(extension), locale(locale) {}

    EventTexts of(const EventRecord& event) {
        if (locale.empty())
            return {};
        if (hanging.contains(event.target))
            return none;
        const auto start = std::chrono::steady_clock::now();
        auto texts = extension.localize(event, locale);
        if (texts && texts->result == ErrorValue::success)
            return std::move(*texts);
        if (std::chrono::steady_clock::now() - start > patience)
            hanging.insert(event.target);
        return none;
    }

private:
    static constexpr std::chrono::milliseconds patience{500};

    ExtensionCalls& extension;
    const std::string& locale;
    const EventTexts none{ErrorValue::request_failed, {}, {}};
    std::set<std::string> hanging;
};

EventSearch::Result EventSearch::run(const EventBook& book, ExtensionCalls& extension) const {
    Texts texts(extension, locale);
    return text.empty() ? page(book, texts) : searchText(book, texts);
}

EventSearch::Result EventSearch::page(const EventBook& book, Texts& texts) const {
    EventPage selected = book.select(filter, offset, limit);
    Result result{selected.total, {}};
    result.hits.reserve(selected.events.size());
    for (EventRecordPtr& event : selected.events) {
        EventTexts found = texts.of(*event);
        result.hits.push_back({std::move(event), std::move(found)});
    }
    return result;
}

EventSearch::Result EventSearch::searchText(const EventBook& book, Texts& texts) const {
    Result result;
    for (EventRecordPtr& event : book.select(filter, 0, unlimited).events) {
        EventTexts found = texts.of(*event);
        if (!containsText(*event, text) && !contains(found.text.view(), text))
            continue;
        if (result.total++ >= offset && result.hits.size() < limit)
            result.hits.push_back({std::move(event), std::move(found)});
    }
    return result;
}

}  // namespace hmi
