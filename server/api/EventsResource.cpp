#include "server/api/EventsResource.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <boost/json/serialize.hpp>

#include "server/api/EventGroups.h"
#include "server/api/EventsCsv.h"
#include "server/api/LongText.h"
#include "server/csv/CsvRow.h"
#include "server/json/EventJson.h"
#include "server/json/TargetJson.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;
using ZrHmiSrv::ErrorValue;

namespace {

constexpr std::uint64_t usualLimit = 100;

bool isLocalized(const Query& query) {
    return query.find("locale") != nullptr;
}

/// A list that has many events, or for which all have to be looked at.
bool isLong(const Query& query) {
    constexpr std::uint64_t usual = 1000;  // events at a time
    const std::string* const order = query.find("order");
    return query.number("limit", 0) > usual || query.flag("group") || query.find("text") ||
           (order && order->ends_with("name"));
}

Place longPlaceOf(const Query& query) {
    return {isLocalized(query) ? Lane::longLocalized : Lane::longLists};
}

Response localizationError(ErrorValue result) {
    switch (result) {
        case ErrorValue::unknown_target_system:
            return Response::error(404, "the event's target system is not configured", result);
        case ErrorValue::not_connected:
            return Response::error(409, "the event's target system is not connected", result);
        case ErrorValue::request_failed:
            return Response::error(400, "unknown locale, or the text could not be fetched", result);
        default:
            return Response::error(400, "the event could not be localized", result);
    }
}

void append(std::string& to, const EventSearch::Hit& hit, Extent extent) {
    const bool isLocalized = hit.texts && hit.texts->result == ErrorValue::success;
    appendJson(to, *hit.event, extent, isLocalized ? hit.texts.get() : nullptr);
}

/// The answer's first members.
std::string headOf(const EventSearch::Result& found, const EventQuery& asked) {
    std::string head = "{\"total\":" + std::to_string(found.total);
    if (asked.isLocalized())
        head += ",\"textsPending\":" + std::to_string(found.textsPending);
    return head;
}

}  // namespace

void EventsResource::addRoutes(Router& router) {
    router.add(
        Method::get, "/api/events",
        [](const Request& r) {
            const Query& query = r.target.query;
            if (isLong(query))
                return longPlaceOf(query);
            return Place{isLocalized(query) ? Lane::lists : Lane::local};
        },
        [this](const Request& r) { return list(r); });
    router.add(
        Method::get, "/api/events.csv",
        [](const Request& r) { return longPlaceOf(r.target.query); },
        [this](const Request& r) { return table(r); });
    router.add(
        Method::get, "/api/events/*",
        [this](const Request& r) {
            return isLocalized(r.target.query) ? Place{Lane::details, find(r)->target}
                                               : Place{Lane::local};
        },
        [this](const Request& r) { return one(r); });
}

Response EventsResource::list(const Request& request) {
    const Query& query = request.target.query;
    const EventQuery asked(query, {"counts", "group", "brief"}, usualLimit);
    const EventSearch search(asked, book, targets, texts, searchTexts);
    const Extent extent = query.flag("brief") ? Extent::brief : Extent::whole;
    std::string counts;
    if (query.flag("counts"))
        counts = ",\"counts\":" +
                 serialize(toJson(book.attention(asked.filter.target, asked.filter.lastKnown)));
    if (query.flag("group"))
        return grouped(search, asked, extent, counts);
    const auto found = std::make_shared<const EventSearch::Result>(search.page());
    const auto item = [found, extent](std::size_t index, std::string& to) {
        const EventSearch::Hit& hit = found->hits[index];
        if (hit.gap)
            to += serialize(toJson(*hit.gap));
        else
            append(to, hit, extent);
    };
    return LongText{headOf(*found, asked) + counts + ",\"events\":[",
                    found->hits.size(),
                    found->hits.size() * sizeof(EventSearch::Hit),
                    ",",
                    "]}",
                    item}
        .response();
}

Response EventsResource::grouped(const EventSearch& search, const EventQuery& asked, Extent extent,
                                 const std::string& counts) {
    EventSearch::Result all = search.all();
    const std::size_t events = all.hits.size();
    std::vector<EventGroup> groups = groupsOf(std::exchange(all.hits, {}));
    all.total = groups.size();
    groups.erase(groups.begin(), groups.begin() + static_cast<std::ptrdiff_t>(
                                                      std::min(asked.offset, groups.size())));
    groups.resize(std::min(asked.limit, groups.size()));
    for (const EventGroup& group : groups)
        all.hits.push_back({group.newest, {}});
    search.addTexts(all);
    const auto found = std::make_shared<const EventSearch::Result>(std::move(all));
    const auto shown = std::make_shared<const std::vector<EventGroup>>(std::move(groups));
    const auto item = [found, shown, extent](std::size_t index, std::string& to) {
        to += serialize(toJson((*shown)[index], {}));
        to.back() = ',';  // in the place of the end, so that one more member follows
        to += "\"newest\":";
        append(to, found->hits[index], extent);
        to += '}';
    };
    return LongText{
        headOf(*found, asked) + ",\"events\":" + std::to_string(events) + counts + ",\"groups\":[",
        shown->size(),
        shown->size() * sizeof(EventGroup),
        ",",
        "]}",
        item}
        .response();
}

Response EventsResource::table(const Request& request) {
    const Query& query = request.target.query;
    EventQuery asked(query, {"bom"}, EventQuery::maxLimit);
    asked.everyText = true;
    if (!query.find("wait"))
        asked.texts.wait = TextWish::maxWait;
    const auto found = std::make_shared<const EventSearch::Result>(
        EventSearch(asked, book, targets, texts, searchTexts).page());
    std::string head(query.flag("bom") ? byteOrderMark : std::string_view());
    const std::size_t count = found->hits.size();
    Response response = LongText{
        head + csvHead(),
        count,
        count * sizeof(EventSearch::Hit),
        "",
        "",
        [found](std::size_t index, std::string& to) {
            to += csvRow(found->hits[index]);
        }}.response();
    response.contentType = "text/csv; charset=utf-8; header=present";
    response.headers.emplace_back("Content-Disposition", "attachment; filename=\"events.csv\"");
    if (asked.isLocalized())
        response.headers.emplace_back("X-Texts-Pending", std::to_string(found->textsPending));
    return response;
}

Response EventsResource::one(const Request& request) {
    request.target.query.allowOnly({"locale"});
    const EventRecordPtr event = find(request);
    std::optional<EventTexts> localized;
    if (const std::string* const locale = request.target.query.find("locale")) {
        localized = extension.localize(*event, *locale);
        if (!localized)
            return Response::error(503, "the extension localizes nothing");
        if (localized->result != ErrorValue::success)
            return localizationError(localized->result);
    }
    Response response;
    appendJson(response.body, *event, Extent::whole, localized ? &*localized : nullptr);
    return response;
}

EventRecordPtr EventsResource::find(const Request& request) const {
    const auto id = EventId::parse(request.target.path[2]);
    EventRecordPtr event = id ? book.find(*id) : nullptr;
    if (id && !event)
        event = book.findLastKnown(*id);
    if (!event)
        throw RequestError(404, "there is no such event");
    return event;
}

}  // namespace hmi
