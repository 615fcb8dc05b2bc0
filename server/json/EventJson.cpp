#include "server/json/EventJson.h"

#include <utility>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value_from.hpp>

#include "server/json/HistoryJson.h"
#include "server/json/JsonText.h"
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
                                     "confirmation", "target",  "gap",     "alive",
                                     "history"};

void appendId(std::string& to, EventId id) {
    if (id.kind == EventKind::alarm)
        appendJson(to, id.number);
    else
        appendJson(to, std::string_view(id.text()));
}

void appendLife(std::string& to, const Confirmation& confirmation) {
    constexpr std::string_view states[] = {"requested", "accepted", "confirmed", "failed",
                                           "unanswered"};
    JsonObjectText object(to);
    object.add("state", states[static_cast<std::size_t>(confirmation.state)]);
    object.add("by", std::string_view(confirmation.by));
    object.add("at", confirmation.at);
    if (!confirmation.comment.empty())
        object.add("comment", std::string_view(confirmation.comment));
    if (confirmation.result)
        object.add("result", static_cast<std::uint32_t>(*confirmation.result));
    if (!confirmation.text.empty())
        object.add("text", std::string_view(confirmation.text));
    object.end();
}

void appendBriefly(std::string& to, const ZrHmiSrv::Value& parameters) {
    JsonObjectText object(to);
    for (auto entry = parameters.begin(); entry != parameters.end(); ++entry) {
        const std::string_view name = entry.name();
        if (entry->type() != ZrHmiSrv::ValueType::binary && name != "jsonAttribute")
            object.add(name, *entry);
    }
    object.end();
}

void addTexts(JsonObjectText& event, const EventTexts& texts, Extent extent) {
    event.add("text", texts.text.view());
    for (const std::string_view name : localizedParameters) {
        const bool isListed = name == "eventClassName" || name == "localizedSourceName";
        if (extent == Extent::brief && !isListed)
            continue;
        if (const ZrHmiSrv::Value* const value = texts.parameters.lookup(name))
            event.add(name, *value);
    }
}

json::object documentOf(const std::string& text) {
    json::parse_options options;
    options.max_depth = 1000;  // as deep as an event's parameters may be
    return json::parse(text, {}, options).as_object();
}

}  // namespace

void appendJson(std::string& to, const EventRecord& event, Extent extent, const EventTexts* texts) {
    const ZrHmiSrv::Event& base = event.event();
    static const Alarm unset;
    const Alarm& alarm = event.alarm() ? *event.alarm() : unset;
    const ZrHmiSrv::Timestamp raised =
        std::visit([](const auto& content) { return content.time_raised(); }, event.content.event);
    const bool isAlarm = event.kind == EventKind::alarm;

    JsonObjectText object(to);
    appendId(object.member("id"), event.id);
    object.add("kind", isAlarm ? "alarm"sv : "message"sv);
    object.add("name", base.name().view());
    object.add("domain", base.domain().view());
    object.add("severity", event.severity);
    object.add("timeReceived", event.position.time);
    object.add("timeRaised", raised);
    object.add("timeCleared", alarm.time_cleared());
    object.add("timeConfirmed", alarm.time_confirmed());
    object.add("alarmState", static_cast<std::uint32_t>(alarm.alarm_state()));
    object.add("confirmationState", static_cast<std::uint32_t>(alarm.confirmation_state()));
    object.add("active", event.life == EventLife::active);
    if (event.confirmation)
        appendLife(object.member("confirmation"), *event.confirmation);
    if (event.lastKnownSince.isset())
        object.add("lastKnownSince", event.lastKnownSince);
    if (extent == Extent::brief && base.payload().is_map())
        appendBriefly(object.member("parameters"), base.payload());
    else
        object.add("parameters", base.payload());
    if (texts)
        addTexts(object, *texts, extent);
    object.end();
}

void appendJson(std::string& to, const LogEntry& entry) {
    const Message& message = entry.message;
    JsonObjectText object(to);
    object.add("seq", entry.sequence);
    object.add("name", message.name().view());
    object.add("severity", static_cast<std::uint32_t>(message.severity()));
    object.add("timeRaised", message.time_raised());
    object.add("domain", message.domain().view());
    object.add("parameters", message.parameters());
    object.end();
}

json::object toJson(const EventRecord& event) {
    std::string text;
    appendJson(text, event);
    return documentOf(text);
}

void addTexts(json::object& event, const EventTexts& texts, Extent extent) {
    std::string text;
    JsonObjectText members(text);
    addTexts(members, texts, extent);
    members.end();
    json::object document = documentOf(text);
    for (json::key_value_pair& member : document)
        event.emplace(member.key(), std::move(member.value()));
}

json::object toJson(const Attention& attention) {
    return {{"unconfirmed", json::value_from(attention.unconfirmed)},
            {"active", json::value_from(attention.active)},
            {"oldestUnconfirmed", toJson(attention.oldestUnconfirmed)}};
}

std::string_view nameOf(ChangeType type) {
    return typeNames[static_cast<std::size_t>(type)];
}

std::string toLine(const Change& change, Extent extent) {
    std::string text;
    text.reserve(1024);
    JsonObjectText line(text);
    line.add("type", nameOf(change.type));
    if (change.event)
        appendJson(line.member("event"), *change.event, extent);
    if (change.entry)
        appendJson(line.member("entry"), *change.entry);
    if (change.target)
        line.member("target") += json::serialize(toJson(*change.target));
    if (change.gap)
        line.member("gap") += json::serialize(toJson(*change.gap));
    if (change.history)
        line.member("history") += json::serialize(toJson(*change.history));
    if (change.replacement)
        line.add("target", std::string_view(change.replacement->target));
    line.end();
    return text;
}

}  // namespace hmi
