#include "robustness/EventImage.h"

#include <algorithm>
#include <iterator>
#include <sstream>

#include "events/ProxyValue.h"
#include "targetsystem/proxy/ReceiveText.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::check;
using ZrAtlCom::ComPtr;
using ZrAtlCom::receiveText;
using ZrHmiEventLogger::readValue;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::AlarmState;
using ZrHmiSrv::Message;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace bridge_test {

namespace {

struct Fields {
    const char* kind;
    std::int64_t id;
    std::string source;
    std::string json;
    std::int64_t arguments;
    Timestamp raised;
    Timestamp cleared = {};
    Timestamp confirmed = {};
    std::string remark = {};
};

std::string write(const Fields& fields) {
    std::ostringstream line;
    line << fields.kind << ' ' << fields.id << " \"" << fields.source << "\" " << fields.json
         << " arguments=" << fields.arguments << " raised=" << fields.raised.nanoseconds()
         << " cleared=" << fields.cleared.nanoseconds()
         << " confirmed=" << fields.confirmed.nanoseconds() << fields.remark;
    return line.str();
}

/// The part that host alarms and messages have in common.
template <class HostEvent>
Fields fieldsOf(const char* kind, const HostEvent& event) {
    const Value& parameters = event.payload();
    const auto text = [&](const char* key) {
        const Value* value = parameters.lookup(key);
        return value ? value->get_string() : "-";
    };
    const auto number = [&](const char* key) {
        const Value* value = parameters.lookup(key);
        return value ? static_cast<std::int64_t>(static_cast<long long>(*value)) : -1;
    };
    Fields fields{kind,
                  number("eventId"),
                  text("sourceName"),
                  text("jsonAttribute"),
                  number("numArguments"),
                  event.time_raised()};
    if (fields.arguments > 0 && !parameters.lookup("data"))
        fields.remark += " without its arguments";
    return fields;
}

Timestamp toTimestamp(FILETIME time) {
    const auto ticks = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    return Timestamp::from_file_time(static_cast<long long>(ticks));
}

template <class ProxyEvent>
Fields fieldsOf(const char* kind, ProxyEvent& event) {
    const ComPtr<ProxyEvent> object(&event);
    const auto json = object.template query<IZrJsonAttribute>();
    ArgumentBlockLayout layout{};
    check(object.template query<IZrEventArguments>()->GetLayout(&layout));
    VARIANT_BOOL named = VARIANT_FALSE;
    check(event.HasSource(SourceAttribute::name, &named));
    return {kind,
            readValue(event, &IZrEvent::get_EventId),
            named ? receiveText(&IZrEvent::get_SourceName, event) : "-",
            json ? receiveText(&IZrJsonAttribute::get_JsonAttribute, *json) : "-",
            layout.count,
            toTimestamp(readValue(event, &IZrEvent::get_TimeRaised)),
            {},
            {},
            {}};
}

template <class ProxyEvent>
Fields alarmFieldsOf(ProxyEvent& event) {
    Fields fields = fieldsOf("alarm", event);
    fields.cleared = toTimestamp(readValue(event, &ProxyEvent::get_TimeCleared));
    fields.confirmed = toTimestamp(readValue(event, &ProxyEvent::get_TimeConfirmed));
    return fields;
}

}  // namespace

std::string imageOf(const Alarm& alarm) {
    Fields fields = fieldsOf("alarm", alarm);
    fields.cleared = alarm.time_cleared();
    fields.confirmed = alarm.time_confirmed();
    const bool confirmed = alarm.confirmation_state() == AlarmConfirmationState::confirmed;
    if (confirmed != fields.confirmed.isset())
        fields.remark += " with a confirmation state that contradicts its time";
    if (alarm.alarm_state() == AlarmState::invalid)
        fields.remark += " invalid";
    return write(fields);
}

std::string imageOf(const Message& message) {
    return write(fieldsOf("message", message));
}

std::string imageOf(const ZrHmiSrv::Event& event) {
    const Value& payload = event.payload();
    return payload.type() == ValueType::alarm ? imageOf(payload.get_alarm())
                                              : imageOf(payload.get_message());
}

std::string imageOf(IZrAlarm& alarm) {
    return write(alarmFieldsOf(alarm));
}

std::string unclearedImageOf(IZrAlarm& alarm) {
    Fields fields = alarmFieldsOf(alarm);
    if (fields.cleared <= fields.raised)
        fields.cleared = {};
    return write(fields);
}

std::string imageOf(IZrLoggedEvent& event) {
    if (readValue(event, &IZrLoggedEvent::get_EventType) == LoggedEventType::message)
        return write(fieldsOf("message", event));
    Fields fields = alarmFieldsOf(event);
    if (!fields.cleared.isset())
        fields.remark += " invalid";
    return write(fields);
}

std::string sourceOf(const Alarm& alarm) {
    const Value* name = alarm.payload().lookup("sourceName");
    return name ? name->get_string() : std::string();
}

void compareImages(Findings& findings, const char* here, const EventImages& a, const char* there,
                   const EventImages& b) {
    const auto add = [&](const char* where, const EventImages& more, const EventImages& less) {
        std::vector<std::string> missing;
        std::set_difference(more.begin(), more.end(), less.begin(), less.end(),
                            std::back_inserter(missing));
        for (const std::string& image : missing)
            findings.push_back(std::string("only ") + where + " has " + image);
    };
    add(here, a, b);
    add(there, b, a);
}

}  // namespace bridge_test
