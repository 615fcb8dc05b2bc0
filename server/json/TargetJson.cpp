#include "server/json/TargetJson.h"

#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;

namespace {

constexpr const char* reasonNames[] = {"disconnected", "forgotten", "database_changed", "rejected"};

json::object reportOf(const TargetImport& import, const json::storage_ptr& storage) {
    return json::object({{"number", import.number},
                         {"at", toJson(import.at)},
                         {"milliseconds", import.milliseconds},
                         {"logged", import.logged},
                         {"active", import.active},
                         {"keptIds", import.keptIds},
                         {"recorded", import.recorded},
                         {"rejected", import.rejected}},
                        storage);
}

}  // namespace

json::object toJson(const TargetStatus& target, json::storage_ptr storage) {
    json::object object(13, storage);
    object.emplace("name", toJson(std::string_view(target.name), storage));
    object.emplace("address", toJson(std::string_view(target.address), storage));
    object.emplace("state", nameOf(target.state));
    object.emplace("since", toJson(target.since, storage));
    if (target.error)
        object.emplace("error",
                       json::object({{"hresult", toJson(std::string_view(target.error->hresult))},
                                     {"text", toJson(std::string_view(target.error->text))}},
                                    storage));
    if (target.lastNotification.isset())
        object.emplace("lastNotification", toJson(target.lastNotification, storage));
    if (target.progress)
        object.emplace("progress", json::object({{"done", target.progress->done},
                                                 {"of", target.progress->of}},
                                                storage));
    if (target.import)
        object.emplace("import", reportOf(*target.import, storage));
    object.emplace("forgotten", target.forgotten);
    object.emplace("rejected", target.rejected);
    if (target.clockSkewMilliseconds)
        object.emplace("clockSkewMilliseconds", *target.clockSkewMilliseconds);
    object.emplace("counters", toJson(target.counters, storage));
    return object;
}

std::string_view nameOf(GapReason reason) {
    return reasonNames[static_cast<std::size_t>(reason)];
}

json::object toJson(const Gap& gap, json::storage_ptr storage) {
    json::object object(6, storage);
    object.emplace("kind", "gap");
    object.emplace("target", toJson(std::string_view(gap.target), storage));
    object.emplace("from", toJson(gap.from, storage));
    object.emplace("to", toJson(gap.to, storage));
    object.emplace("reason", nameOf(gap.reason));
    object.emplace("lost", gap.lost ? json::value(*gap.lost) : json::value());
    return object;
}

}  // namespace hmi
