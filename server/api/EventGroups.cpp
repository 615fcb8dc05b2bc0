#include "server/api/EventGroups.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include <boost/container_hash/hash.hpp>

#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;

namespace {

void add(EventGroup& group, const EventRecordPtr& event) {
    const bool isFirst = group.count++ == 0;
    group.active += event->life == EventLife::active ? 1U : 0U;
    group.unconfirmed += event->unconfirmed ? 1U : 0U;
    if (group.severity == noSeverity ||
        (event->severity != noSeverity && group.severity < event->severity))
        group.severity = event->severity;
    if (isFirst || event->priority < group.priority)
        group.priority = event->priority;
    if (isFirst || event->position < group.newest->position)
        group.newest = event;
}

}  // namespace

std::vector<EventGroup> groupsOf(const std::vector<EventSearch::Hit>& hits) {
    std::vector<EventGroup> groups;
    std::unordered_map<EventOrigin, std::size_t, boost::hash<EventOrigin>> places;
    for (const EventSearch::Hit& hit : hits) {
        EventOrigin origin = originOf(*hit.event);
        origin.eventId.reset();
        const auto [place, isNew] = places.try_emplace(std::move(origin), groups.size());
        if (isNew)
            groups.push_back({place->first});
        add(groups[place->second], hit.event);
    }
    std::sort(groups.begin(), groups.end(), [](const EventGroup& a, const EventGroup& b) {
        return a.priority != b.priority ? a.priority < b.priority
                                        : a.newest->position < b.newest->position;
    });
    return groups;
}

json::object toJson(const EventGroup& group, json::storage_ptr storage) {
    json::object object(10, storage);
    object.emplace("target", group.origin.target);
    object.emplace("name", group.origin.name);
    object.emplace("eventClass", group.origin.eventClass);
    object.emplace("sourceName", group.origin.sourceName);
    object.emplace("severity", group.severity);
    object.emplace("count", group.count);
    object.emplace("active", group.active);
    object.emplace("unconfirmed", group.unconfirmed);
    return object;
}

}  // namespace hmi
