#include "server/statistics/StatisticsJson.h"

#include "server/json/EventJson.h"
#include "server/json/TargetJson.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;
using ZrHmiSrv::ErrorValue;

namespace {

json::object toJson(const RaiseRates::Rate& rate) {
    return {{"at", hmi::toJson(rate.at)}, {"alarms", rate.alarms}};
}

/// What is common to alarms of one origin; `alarm` is one of them.
json::object named(const EventOrigin& origin, std::int64_t alarm, const TextsOf& textsOf) {
    json::object object{{"id", alarm},
                        {"name", origin.name},
                        {"eventClass", origin.eventClass},
                        {"eventId", origin.eventId ? json::value(*origin.eventId) : json::value()},
                        {"sourceName", origin.sourceName},
                        {"target", origin.target}};
    const TextsPtr texts = textsOf(alarm);
    if (texts && texts->result == ErrorValue::success)
        addTexts(object, *texts, Extent::brief);
    return object;
}

json::array often(const std::vector<RaiseRates::Often>& alarms, bool chattering,
                  const TextsOf& textsOf) {
    json::array array;
    for (const RaiseRates::Often& alarm : alarms) {
        json::object object = named(*alarm.origin, alarm.newest, textsOf);
        object.emplace("count", alarm.count);
        if (chattering)
            object.emplace("perMinute", alarm.perMinute);
        array.push_back(std::move(object));
    }
    return array;
}

json::object toJson(const StatisticsPart& part, const TextsOf& textsOf) {
    json::array rates;
    for (const RaiseRates::Rate& rate : part.rates.series())
        rates.push_back(toJson(rate));
    json::array standing;
    for (const EventRecordPtr& event : part.standing) {
        json::object object = named(originOf(*event), event->id.number, textsOf);
        object.emplace("timeRaised", hmi::toJson(event->alarm()->time_raised()));
        object.emplace("severity", event->severity);
        standing.push_back(std::move(object));
    }
    json::array gaps;
    for (const GapPtr& gap : part.gaps)
        gaps.push_back(hmi::toJson(*gap));
    json::object counts = hmi::toJson(part.attention);
    json::value oldest = counts.at("oldestUnconfirmed");
    counts.erase("oldestUnconfirmed");
    return {{"rate", std::move(rates)},
            {"peak", toJson(part.rates.peak())},
            {"frequent", often(part.rates.frequent(), false, textsOf)},
            {"chattering", often(part.rates.chattering(), true, textsOf)},
            {"standing", std::move(standing)},
            {"counts", std::move(counts)},
            {"oldestUnconfirmed", std::move(oldest)},
            {"flood", part.flood},
            {"gaps", std::move(gaps)}};
}

}  // namespace

json::object toJson(const StatisticsReport& report, const TextsOf& textsOf) {
    json::array targets;
    for (const auto& [name, part] : report.targets) {
        json::object target{{"name", toJson(std::string_view(name))}};
        json::object rest = toJson(part, textsOf);
        target.insert(rest.begin(), rest.end());
        targets.push_back(std::move(target));
    }
    return {{"from", toJson(report.from)},
            {"to", toJson(report.to)},
            {"since", toJson(report.since)},
            {"minutes",
             (report.to.nanoseconds() - report.from.nanoseconds()) / (60 * RaiseRates::second)},
            {"flood", report.all.flood},
            {"all", toJson(report.all, textsOf)},
            {"targets", std::move(targets)}};
}

std::vector<std::int64_t> namedAlarms(const StatisticsReport& report) {
    std::vector<std::int64_t> alarms;
    const auto add = [&](const StatisticsPart& part) {
        for (const auto& list : {part.rates.frequent(), part.rates.chattering()}) {
            for (const RaiseRates::Often& alarm : list)
                alarms.push_back(alarm.newest);
        }
        for (const EventRecordPtr& event : part.standing)
            alarms.push_back(event->id.number);
    };
    add(report.all);
    for (const auto& [name, part] : report.targets)
        add(part);
    return alarms;
}

}  // namespace hmi
