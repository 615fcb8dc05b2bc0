#include "server/api/HistoryResource.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

#include "server/api/EventQuery.h"
#include "server/api/HistoryCsv.h"
#include "server/csv/CsvRow.h"
#include "server/json/HistoryJson.h"

namespace hmi {

namespace {

constexpr std::uint64_t maxLimit = 1000;

/// What selects entries.
const Query::Names filters{"from",     "to",         "station", "target", "kind", "change",
                               "severity", "occurrence", "text"};

/// The choice of that name, by its place among the names.
template <class T, class Names>
std::optional<T> choiceOf(const Query& query, std::string_view name, const Names& names) {
    const std::string* const chosen = query.find(name);
    if (!chosen)
        return std::nullopt;
    const auto found = std::find(std::begin(names), std::end(names), *chosen);
    if (found == std::end(names))
        throw RequestError(400, std::string(name) + " cannot be " + *chosen);
    return static_cast<T>(std::distance(std::begin(names), found));
}

std::optional<std::string> givenText(const Query& query, std::string_view name) {
    const std::string* const text = query.find(name);
    return text ? std::optional(*text) : std::nullopt;
}

/// Where a page goes on: a number that is nobody's business.
std::int64_t cursorOf(const std::string& text) {
    std::int64_t cursor = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, cursor);
    if (read.ec != std::errc() || read.ptr != end)
        throw RequestError(400, "after is the next of the page before");
    return cursor;
}

HistoryQuery filterOf(const Query& parameters) {
    constexpr std::string_view kinds[] = {"alarm", "message", "gap", "audit"};
    HistoryQuery query;
    query.from = timeOf(parameters, "from");
    query.to = timeOf(parameters, "to");
    query.station = givenText(parameters, "station");
    query.target = givenText(parameters, "target");
    query.kind = choiceOf<HistoryKind>(parameters, "kind", kinds);
    query.change = choiceOf<HistoryChange>(parameters, "change", historyChangeNames);
    constexpr std::uint64_t highest = std::numeric_limits<std::uint32_t>::max();
    query.severity =
        static_cast<std::uint32_t>(std::min(parameters.number("severity", 0), highest));
    if (parameters.find("occurrence"))
        query.occurrence = static_cast<std::int64_t>(
            std::min<std::uint64_t>(parameters.number("occurrence", 0),
                                    std::numeric_limits<std::int64_t>::max()));
    query.text = givenText(parameters, "text").value_or("");
    if (query.occurrence && !query.text.empty())
        throw RequestError(400, "text and occurrence exclude each other");
    query.limit = static_cast<std::size_t>(std::min(parameters.number("limit", 100), maxLimit));
    if (const std::string* const after = parameters.find("after"))
        query.after = cursorOf(*after);
    return query;
}

/// The rows of all pages, some of them a call.
class Rows {
public:
    Rows(IHistory& history, HistoryQuery query, std::string head)
        : history(history), query(std::move(query)), part(std::move(head)) {}

    std::string operator()() {
        while (part.empty() && !isAtEnd) {
            const HistoryPage page = history.read(query);
            for (const HistoryEntry& entry : page.entries)
                part += historyCsvRow(entry);
            isAtEnd = !page.next;
            query.after = page.next.value_or(0);
        }
        return std::exchange(part, {});
    }

private:
    IHistory& history;
    HistoryQuery query;
    std::string part;
    bool isAtEnd = false;
};

HistoryPage pageOf(IHistory& history, const HistoryQuery& query) {
    try {
        return history.read(query);
    } catch (const HistoryUnreadable& error) {
        throw RequestError(503, error.what());
    }
}

}  // namespace

void HistoryResource::addRoutes(Router& router) {
    const auto readsDisk = [](const Request&) { return Place{Lane::history}; };
    router.add(Method::get, "/api/history", readsDisk,
               [this](const Request& request) { return list(request); });
    router.add(Method::get, "/api/history.csv", readsDisk,
               [this](const Request& request) { return table(request); });
    router.add(Method::get, "/api/history/state",
               [this](const Request& request) { return state(request); });
}

IHistory& HistoryResource::kept() const {
    if (!history)
        throw RequestError(404, "no history is kept: the server was started without --history");
    return *history;
}

/// What users did is for engineers.
HistoryQuery HistoryResource::queryOf(const Request& request) const {
    HistoryQuery query = filterOf(request.target.query);
    query.withAudit = access.roleOf(request.user) >= Role::engineer;
    const bool wantsAudit =
        query.kind == HistoryKind::audit || query.change == HistoryChange::audit;
    if (wantsAudit && !query.withAudit)
        throw RequestError(403, "what users did takes the role engineer");
    return query;
}

Response HistoryResource::list(const Request& request) {
    request.target.query.allowOnly(filters, {"limit", "after"});
    IHistory& from = kept();
    const HistoryPage page = pageOf(from, queryOf(request));
    Response response;
    response.body = "{\"entries\":[";
    for (const HistoryEntry& entry : page.entries) {
        if (response.body.back() != '[')
            response.body += ",";
        response.body += toText(entry);
    }
    const std::string next = page.next ? "\"" + std::to_string(*page.next) + "\"" : "null";
    response.body += "],\"next\":" + next + "}";
    return response;
}

/// Read page by page as the client takes it; what fails in the middle breaks the connection off.
Response HistoryResource::table(const Request& request) {
    constexpr std::size_t pageSize = 500;
    const Query& parameters = request.target.query;
    parameters.allowOnly(filters, {"bom"});
    HistoryQuery query = queryOf(request);
    query.limit = 1;
    pageOf(kept(), query);  // what cannot be read is told before the first row
    query.limit = pageSize;
    std::string head(parameters.flag("bom") ? byteOrderMark : std::string_view());
    Response response;
    response.held = pageSize << 10;
    response.partsLane = Lane::history;
    response.parts = Rows(kept(), std::move(query), head + historyCsvHead());
    response.contentType = "text/csv; charset=utf-8; header=present";
    response.headers.emplace_back("Content-Disposition", "attachment; filename=\"history.csv\"");
    return response;
}

Response HistoryResource::state(const Request& request) {
    request.target.query.allowOnly({});
    return Response::json(toJson(kept().status()));
}

}  // namespace hmi
