#include "server/events/EventRecord.h"

#include <boost/container_hash/hash.hpp>

#include "server/events/ValueHash.h"
#include "server/json/Utf8.h"

namespace hmi {

using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::AlarmState;
using ZrHmiSrv::Event;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

const Event& baseOf(const EventContent& content) {
    return std::visit([](const auto& event) -> const Event& { return event; }, content.event);
}

const Alarm* alarmOf(const EventContent& content) {
    return std::get_if<Alarm>(&content.event);
}

std::optional<EventContent> contentOf(const Value& value, Timestamp received) {
    if (value.type() == ValueType::alarm)
        return EventContent{value.get_alarm(), received};
    if (value.type() == ValueType::message)
        return EventContent{value.get_message(), received};
    return std::nullopt;
}

Timestamp timeReceived(const EventContent& content) {
    if (content.timeReceived.isset())
        return content.timeReceived;
    return std::visit([](const auto& event) { return event.time_raised(); }, content.event);
}

EventLife lifeOf(const EventContent& content, bool ended) {
    const Alarm* const alarm = alarmOf(content);
    if (!alarm)
        return EventLife::other;
    if (alarm->time_cleared().isset())
        return EventLife::cleared;
    return ended || alarm->alarm_state() == AlarmState::invalid ? EventLife::other
                                                                : EventLife::active;
}

EventId idOf(const EventContent& content, std::uint64_t arrival) {
    if (const Alarm* const alarm = alarmOf(content))
        return {EventKind::alarm, alarm->id()};
    return {EventKind::message, static_cast<std::int64_t>(arrival)};
}

bool isUnconfirmed(const EventContent& content) {
    const Alarm* const alarm = alarmOf(content);
    return alarm && alarm->confirmation_state() == AlarmConfirmationState::pending;
}

std::uint32_t severityOf(const EventContent& content) {
    return std::visit(
        [](const auto& event) { return static_cast<std::uint32_t>(event.severity()); },
        content.event);
}

/// First what is active and unconfirmed, then the other unconfirmed ones, then what is active, then
/// the rest; within these the most severe. Without a severity it is the least.
std::uint64_t priorityOf(EventLife life, bool unconfirmed, std::uint32_t severity) {
    const bool active = life == EventLife::active;
    const std::uint64_t group = (unconfirmed ? 0U : 2U) + (active ? 0U : 1U);
    return group << 32 | (severity == noSeverity ? noSeverity : noSeverity - 1 - severity);
}

EventShape shapeOf(const EventContent& content, bool ended) {
    const EventLife life = lifeOf(content, ended);
    const bool unconfirmed = isUnconfirmed(content);
    const std::uint32_t severity = severityOf(content);
    return {alarmOf(content) ? EventKind::alarm : EventKind::message, life, unconfirmed, severity,
            priorityOf(life, unconfirmed, severity)};
}

}  // namespace

std::optional<EventContent> contentOf(const Event& event) {
    const Timestamp received = event.time_received();
    std::optional<EventContent> content = contentOf(event.payload(), received);
    return content ? content : contentOf(Value(event), received);
}

EventRecord::EventRecord(EventContent from, std::uint64_t arrival, bool ended)
    : EventShape(shapeOf(from, ended)),
      content(std::move(from)),
      ended(ended),
      position{timeReceived(content), arrival},
      id(idOf(content, arrival)),
      target(targetOf(event().payload())) {}

std::size_t EventRecord::payloadHash() const {
    return hash.get([this] { return hashOf(event().payload()); });
}

std::size_t EventRecord::contentHash() const {
    std::size_t hash = payloadHash();
    boost::hash_combine(hash, position.time.nanoseconds());
    return hash;
}

const Event& EventRecord::event() const noexcept {
    return baseOf(content);
}

std::string targetOf(const Value& parameters) {
    const Value* const value = parameters.lookup("targetName");
    return value && value->type() == ValueType::string
               ? toValidUtf8(static_cast<const char*>(*value))
               : std::string();
}

bool isSameMessage(const EventRecord& a, const EventRecord& b) {
    return a.kind == EventKind::message && b.kind == EventKind::message &&
           a.position.time == b.position.time &&
           a.event().name() == b.event().name() && a.event().domain() == b.event().domain() &&
           a.event().payload() == b.event().payload();
}

}  // namespace hmi
