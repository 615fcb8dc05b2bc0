#include "events/Conversion.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "events/EventParameters.h"
#include "events/ProxyValue.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::AlarmState;
using ZrHmiSrv::Event;
using ZrHmiSrv::Message;
using ZrHmiSrv::Severity;
using ZrHmiSrv::Text;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

namespace {

std::uint64_t ticksOf(FILETIME time) {
    return (std::uint64_t{time.dwHighDateTime} << 32) | std::uint64_t{time.dwLowDateTime};
}

const Text& alarmName() {
    static const Text name = Text::constant("ZREVENTLOGGER_ALARM");
    return name;
}

const Text& messageName() {
    static const Text name = Text::constant("ZREVENTLOGGER_MESSAGE");
    return name;
}

template <class Source>
void setCommon(Alarm& alarm, Source& source, FILETIME raised, const EventContext& context) {
    alarm.set_name(alarmName());
    alarm.set_domain(context.domain);
    alarm.set_severity(mapSeverity(context.read(source, &IZrEvent::get_Severity)));
    alarm.set_time_raised(toTimestamp(raised));
    alarm.set_time_confirmed(toTimestamp(context.read(source, &Source::get_TimeConfirmed)));
    alarm.set_payload(eventParameters(context, source));
}

template <class Source>
void setCommon(Message& message, Source& source, const EventContext& context) {
    message.set_name(messageName());
    message.set_domain(context.domain);
    message.set_severity(mapSeverity(context.read(source, &IZrEvent::get_Severity)));
    message.set_time_raised(toTimestamp(context.read(source, &IZrEvent::get_TimeRaised)));
    message.set_payload(eventParameters(context, source));
}

AlarmConfirmationState loggedConfirmation(const EventContext& context, IZrLoggedEvent& source,
                                          Timestamp confirmed) {
    if (context.read(source, &IZrLoggedEvent::get_RequiresConfirmation) != VARIANT_TRUE)
        return AlarmConfirmationState::none;
    return confirmed.isset() ? AlarmConfirmationState::confirmed : AlarmConfirmationState::lapsed;
}

Alarm loggedAlarm(IZrLoggedEvent& source, const EventContext& context, std::int32_t hostId) {
    Alarm alarm;
    alarm.set_id(hostId);
    setCommon(alarm, source, context.read(source, &IZrEvent::get_TimeRaised), context);
    alarm.set_time_cleared(toTimestamp(context.read(source, &IZrLoggedEvent::get_TimeCleared)));
    alarm.set_confirmation_state(loggedConfirmation(context, source, alarm.time_confirmed()));
    if (!alarm.time_cleared().isset())
        alarm.set_alarm_state(AlarmState::invalid);
    return alarm;
}

template <class Payload>
void describe(Event& event, const Payload& payload) {
    event.set_name(payload.name());
    event.set_domain(payload.domain());
    event.set_time_received(payload.time_raised());
}

}  // namespace

Severity mapSeverity(std::uint32_t severity) {
    return severity <= 4 ? static_cast<Severity>(severity) : Severity::info;
}

AlarmConfirmationState mapConfirmationState(std::uint32_t state) {
    return state <= 4 ? static_cast<AlarmConfirmationState>(state) : AlarmConfirmationState::none;
}

Timestamp toTimestamp(FILETIME time) {
    constexpr std::uint64_t latest = std::numeric_limits<long long>::max();
    return Timestamp::from_file_time(static_cast<long long>(std::min(ticksOf(time), latest)));
}

void toHostAlarm(Alarm& alarm, IZrAlarm& source, const EventContext& context, std::int32_t hostId,
                 bool keepId) {
    if (!keepId)
        alarm.set_id(hostId);
    const FILETIME raised = context.read(source, &IZrEvent::get_TimeRaised);
    setCommon(alarm, source, raised, context);
    // Compared as the logger has them: times that the host cannot hold are all the same to it.
    const FILETIME cleared = context.read(source, &IZrAlarm::get_TimeCleared);
    alarm.set_time_cleared(ticksOf(cleared) > ticksOf(raised) ? toTimestamp(cleared) : Timestamp());
    alarm.set_confirmation_state(
        mapConfirmationState(context.read(source, &IZrAlarm::get_ConfirmationState)));
}

void toHostMessage(Message& message, IZrMessage& source, const EventContext& context) {
    setCommon(message, source, context);
}

Value toHostPayload(IZrLoggedEvent& source, const EventContext& context, std::int32_t hostId) {
    switch (context.read(source, &IZrLoggedEvent::get_EventType)) {
        case LoggedEventType::message: {
            Message message;
            setCommon(message, source, context);
            return message;
        }
        case LoggedEventType::alarm:
            return loggedAlarm(source, context, hostId);
    }
    return {};
}

Event eventOf(Value payload) {
    Event event;
    if (payload.type() == ValueType::alarm)
        describe(event, payload.get_alarm());
    else if (payload.type() == ValueType::message)
        describe(event, payload.get_message());
    event.set_payload(std::move(payload));
    return event;
}

}  // namespace ZrHmiEventLogger
