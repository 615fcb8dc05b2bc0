#include "tests/events/RecordingLogging.h"

#include <chrono>

using namespace ZrHmiSrv;

namespace bridge_test {

namespace {

std::string textOf(const Value& value) {
    switch (value.type()) {
        case ValueType::boolean:
            return static_cast<bool>(value) ? "true" : "false";
        case ValueType::integer:
            return std::to_string(static_cast<int>(value));
        case ValueType::timestamp:
            return bridge_test::textOf(value.get_timestamp());
        case ValueType::string:
            return std::string(value.get_text().view());
        default:
            return "?";
    }
}

}  // namespace

std::string textOf(Timestamp time) {
    if (!time.isset())
        return "-";
    const std::int64_t age = Timestamp::now().seconds() - time.seconds();
    return age >= 0 && age < 60 ? "now" : std::to_string(time.seconds()) + "s";
}

void RecordingLogging::note(std::string line) {
    lines.push_back(std::move(line));
    onCall(lines.back());
}

void RecordingLogging::logMessage(Message message) {
    std::string line(message.name().view());
    const Value& parameters = message.parameters();
    for (std::size_t index = 0; index < parameters.size(); ++index)
        line += " " + textOf(*parameters.find(std::to_string(index).c_str()));
    if (message.severity() != Severity::unspecified || textOf(message.time_raised()) != "now")
        line += " with another severity or time";
    note(std::move(line));
}

void RecordingLogging::reportCommunicationError(const Text& text) {
    note("error " + std::string(text.view()));
}

void RecordingLogging::reportCommunicationError(const Text& text, const std::exception& exception) {
    note("error " + std::string(text.view()) + " " + exception.what());
}

void RecordingLogging::sendMessage(Message message) {
    note("send " + textOf(message.time_raised()));
}

void RecordingLogging::raiseAlarm(Alarm alarm) {
    alarms.push_back(alarm);
    note("raise " + std::to_string(alarm.id()));
}

void RecordingLogging::updateAlarm(Alarm alarm, bool removed) {
    alarms.push_back(alarm);
    note((removed ? "remove " : "update ") + std::to_string(alarm.id()));
}

void RecordingLogging::forgetEvent(Event event) {
    const bool isAlarm = event.payload().type() == ValueType::alarm;
    note("forget " + (isAlarm ? std::to_string(event.payload().get_alarm().id())
                              : textOf(event.time_received())));
}

}  // namespace bridge_test
