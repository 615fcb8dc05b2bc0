#include "server/json/EventJson.h"

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value_from.hpp>

#include "server/json/TargetJson.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;
using namespace std::string_view_literals;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::Message;

namespace {

constexpr const char* typeNames[] = {"raised",       "updated", "removed", "message",
                                     "forgotten",    "reset",   "log",     "texts",
                                     "confirmation", "target",  "gap",     "alive"};

json::value idOf(EventId id, const json::storage_ptr& storage) {
    if (id.kind == EventKind::alarm)
        return id.number;
    return json::string(id.text(), storage);
}

json::object lifeOf(const Confirmation& confirmation, const json::storage_ptr& storage) {
    constexpr const char* states[] = {"requested", "accepted", "confirmed", "failed", "unanswered"};
    json::object object(8, storage);
    object.emplace("state", states[static_cast<std::size_t>(confirmation.state)]);
    object.emplace("by", toJson(std::string_view(confirmation.by), storage));
    object.emplace("at", toJson(confirmation.at, storage));
    if (!confirmation.comment.empty())
        object.emplace("comment", toJson(std::string_view(confirmation.comment), storage));
    if (confirmation.result)
        object.emplace("result", static_cast<std::uint32_t>(*confirmation.result));
    if (!confirmation.text.empty())
        object.emplace("text", toJson(std::string_view(confirmation.text), storage));
    return object;
}

json::object briefly(const ZrHmiSrv::Value& parameters, const json::storage_ptr& storage) {
    json::object object(parameters.size(), storage);
    for (auto entry = parameters.begin(); entry != parameters.end(); ++entry) {
        const std::string_view name = entry.name();
        if (entry->type() != ZrHmiSrv::ValueType::binary && name != "jsonAttribute")
            object.emplace(toJson(name, storage), toJson(*entry, storage));
    }
    return object;
}

}  // namespace

json::object toJson(const EventRecord& event, json::storage_ptr storage, Extent extent) {
    const ZrHmiSrv::Event& base = event.event();
    const Alarm unset;
    const Alarm& alarm = event.alarm() ? *event.alarm() : unset;
    const ZrHmiSrv::Timestamp raised =
        std::visit([](const auto& content) { return content.time_raised(); }, event.content.event);
    const bool isAlarm = event.kind == EventKind::alarm;

    json::object object(16, storage);
    object.emplace("id", idOf(event.id, storage));
    object.emplace("kind", isAlarm ? "alarm" : "message");
    object.emplace("name", toJson(base.name().view(), storage));
    object.emplace("domain", toJson(base.domain().view(), storage));
    object.emplace("severity", event.severity);
    object.emplace("timeReceived", toJson(event.position.time, storage));
    object.emplace("timeRaised", toJson(raised, storage));
    object.emplace("timeCleared", toJson(alarm.time_cleared(), storage));
    object.emplace("timeConfirmed", toJson(alarm.time_confirmed(), storage));
    object.emplace("alarmState", static_cast<std::uint32_t>(alarm.alarm_state()));
    object.emplace("confirmationState", static_cast<std::uint32_t>(alarm.confirmation_state()));
    object.emplace("active", event.life == EventLife::active);
    if (event.confirmation)
        object.emplace("confirmation", lifeOf(*event.confirmation, storage));
    if (event.lastKnownSince.isset())
        object.emplace("lastKnownSince", toJson(event.lastKnownSince, storage));
    if (extent == Extent::brief && base.payload().is_map())
        object.emplace("parameters", briefly(base.payload(), storage));
    else
        object.emplace("parameters", toJson(base.payload(), storage));
    return object;
}

void addTexts(json::object& event, const EventTexts& texts, Extent extent) {
    event.emplace("text", toJson(texts.text.view(), event.storage()));
    for (const char* name : localizedParameters) {
        const bool isListed = name == "eventClassName"sv || name == "localizedSourceName"sv;
        if (extent == Extent::brief && !isListed)
            continue;
        if (const ZrHmiSrv::Value* const value = texts.parameters.lookup(name))
            event.emplace(name, toJson(*value, event.storage()));
    }
}

json::object toJson(const Attention& attention) {
    return {{"unconfirmed", json::value_from(attention.unconfirmed)},
            {"active", json::value_from(attention.active)},
            {"oldestUnconfirmed", toJson(attention.oldestUnconfirmed)}};
}

json::object toJson(const LogEntry& entry, json::storage_ptr storage) {
    const Message& message = entry.message;
    json::object object(6, storage);
    object.emplace("seq", entry.sequence);
    object.emplace("name", toJson(message.name().view(), storage));
    object.emplace("severity", static_cast<std::uint32_t>(message.severity()));
    object.emplace("timeRaised", toJson(message.time_raised(), storage));
    object.emplace("domain", toJson(message.domain().view(), storage));
    object.emplace("parameters", toJson(message.parameters(), storage));
    return object;
}

std::string_view nameOf(ChangeType type) {
    return typeNames[static_cast<std::size_t>(type)];
}

std::string toLine(const Change& change, std::uint64_t sequence) {
    json::monotonic_resource memory;
    json::object line(&memory);
    line.emplace("seq", sequence);
    line.emplace("type", nameOf(change.type));
    if (change.event)
        line.emplace("event", toJson(*change.event, &memory));
    if (change.entry)
        line.emplace("entry", toJson(*change.entry, &memory));
    if (change.target)
        line.emplace("target", toJson(*change.target, &memory));
    if (change.gap)
        line.emplace("gap", toJson(*change.gap, &memory));
    if (change.replacement)
        line.emplace("target", toJson(std::string_view(change.replacement->target), &memory));
    return json::serialize(line);
}

}  // namespace hmi
