#include "server/api/StatisticsResource.h"

#include <algorithm>
#include <chrono>
#include <map>

#include "server/api/EventQuery.h"
#include "server/statistics/StatisticsJson.h"

namespace hmi {

namespace {

constexpr std::uint64_t usualMinutes = 60;
constexpr std::uint64_t maxMinutes = 7 * 24 * 60;

std::chrono::minutes lengthOf(const Query& query) {
    const std::uint64_t minutes = query.number("minutes", usualMinutes);
    if (minutes == 0 || minutes > maxMinutes)
        throw RequestError(400, "minutes is a number from 1 to 10080");
    return std::chrono::minutes(minutes);
}

}  // namespace

void StatisticsResource::addRoutes(Router& router) {
    router.add(
        Method::get, "/api/statistics",
        [](const Request& request) {
            return Place{request.target.query.find("locale") ? Lane::longLocalized
                                                             : Lane::longLists};
        },
        [this](const Request& request) { return read(request); });
}

Response StatisticsResource::read(const Request& request) {
    const Query& query = request.target.query;
    query.allowOnly({"minutes", "locale", "wait"});
    const TextWish wish(query);
    const StatisticsReport report(lengthOf(query), ZrHmiSrv::Timestamp::now(), raises, book,
                                  targets);
    std::map<std::int64_t, TextsPtr> known;
    if (!wish.locale.empty()) {
        std::vector<EventRecordPtr> events;
        for (const std::int64_t alarm : namedAlarms(report)) {
            EventRecordPtr event = book.find({EventKind::alarm, alarm});
            if (event && known.try_emplace(alarm).second)
                events.push_back(std::move(event));
        }
        const std::vector<TextsPtr> found = texts.get(events, wish.locale, wish.wait);
        for (std::size_t i = 0; i < events.size(); ++i)
            known[events[i]->id.number] = found[i];
    }
    return Response::json(toJson(report, [&](std::int64_t alarm) {
        const auto found = known.find(alarm);
        return found == known.end() ? nullptr : found->second;
    }));
}

}  // namespace hmi
