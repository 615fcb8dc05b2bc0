#include "server/api/EventsResource.h"

#include <chrono>
#include <memory>
#include <string>

#include "server/api/EventSearch.h"
#include "server/api/LongList.h"
#include "server/json/EventJson.h"
#include "server/json/TargetJson.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;
using ZrHmiSrv::ErrorValue;

namespace {

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

}  // namespace

void EventsResource::addRoutes(Router& router) {
    const auto ifLocalized = [](const Request& request, Place place,
                                Lane otherwise = Lane::local) {
        return request.target.query.find("locale") ? std::move(place) : Place{otherwise};
    };
    router.add(
        Method::get, "/api/events",
        [=](const Request& r) {
            constexpr std::uint64_t usual = 1000;  // events at a time
            const bool isLong = r.target.query.number("limit", 0) > usual;
            return ifLocalized(r, {Lane::lists}, isLong ? Lane::longLists : Lane::local);
        },
        [this](const Request& r) { return list(r); });
    router.add(
        Method::get, "/api/events/*",
        [=, this](const Request& r) {
            return ifLocalized(r, {Lane::details, find(r)->target});
        },
        [this](const Request& r) { return one(r); });
}

Response EventsResource::list(const Request& request) {
    const EventSearch search(request.target.query);
    const auto found =
        std::make_shared<const EventSearch::Result>(search.run(book, targets, texts));
    const auto item = [found](std::size_t index, json::storage_ptr memory) {
        const EventSearch::Hit& hit = found->hits[index];
        if (hit.gap)
            return toJson(*hit.gap, memory);
        json::object event = toJson(*hit.event, memory);
        if (hit.texts && hit.texts->result == ErrorValue::success)
            addTexts(event, *hit.texts);
        return event;
    };
    std::string head = "{\"total\":" + std::to_string(found->total);
    if (search.isLocalized())
        head += ",\"textsPending\":" + std::to_string(found->textsPending);
    const std::size_t count = found->hits.size();
    return LongList{head + ",\"events\":[", count, count * sizeof(EventSearch::Hit), item}
        .response();
}

Response EventsResource::one(const Request& request) {
    request.target.query.allowOnly({"locale"});
    const EventRecordPtr event = find(request);
    json::object body = toJson(*event);
    if (const std::string* const locale = request.target.query.find("locale")) {
        const auto localized = extension.localize(*event, *locale);
        if (!localized)
            return Response::error(503, "the extension localizes nothing");
        if (localized->result != ErrorValue::success)
            return localizationError(localized->result);
        addTexts(body, *localized);
    }
    return Response::json(std::move(body));
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
