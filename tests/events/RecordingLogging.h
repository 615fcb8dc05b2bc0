#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "events/ILoggingFunctions.h"

namespace bridge_test {

/// Seconds since 1970; "-" is unset and "now" within the last minute.
inline std::string textOf(ZrHmiSrv::Timestamp time) {
    if (!time.isset())
        return "-";
    const std::int64_t age = ZrHmiSrv::Timestamp::now().seconds() - time.seconds();
    return age >= 0 && age < 60 ? "now" : std::to_string(time.seconds()) + "s";
}

/// Binary data as "bytes 1 2 3".
inline std::string textOf(const ZrHmiSrv::Value& value) {
    using enum ZrHmiSrv::ValueType;
    std::string bytes = "bytes";
    for (const std::byte byte : value.get_binary().bytes())
        bytes += " " + std::to_string(static_cast<int>(byte));
    switch (value.type()) {
        case boolean:
            return static_cast<bool>(value) ? "true" : "false";
        case integer:
            return std::to_string(static_cast<int>(value));
        case real:
            return std::to_string(static_cast<double>(value));
        case timestamp:
            return textOf(value.get_timestamp());
        default:
            return value.type() == binary ? bytes : value.get_string();
    }
}

/// "1s alarm 3 cleared 2s confirmed 4s", "1s invalid 3", "2s message"; "1s" for any other.
inline std::string textOf(const ZrHmiSrv::Event& event) {
    std::string text = textOf(event.time_received());
    const ZrHmiSrv::Alarm alarm = event.payload().get_alarm();
    if (!alarm.isset())
        return text + (event.payload().isset() ? " message" : "");
    const bool invalid = alarm.alarm_state() == ZrHmiSrv::AlarmState::invalid;
    text += (invalid ? " invalid " : " alarm ") + std::to_string(alarm.id());
    if (alarm.time_cleared().isset())
        text += " cleared " + textOf(alarm.time_cleared());
    if (alarm.time_confirmed().isset())
        text += " confirmed " + textOf(alarm.time_confirmed());
    return text;
}

/// Keeps every call as a line: "NEW_ALARM_RAISED Filler 1 5s", "raise 1", "update 1", "remove 1",
/// "send 5s", "forget 1" ("forget 5s" for a message), "error Filler text". Any thread.
class RecordingLogging final : public ZrHmiEventLogger::ILoggingFunctions {
public:
    std::function<void(const std::string& line)> onCall = [](const std::string&) {};
    std::vector<ZrHmiSrv::Alarm> alarms;  ///< as they were raised and updated
    bool preload = false;

    /// The lines since the last call of this function.
    std::vector<std::string> take() {
        std::lock_guard lock(mutex);
        return std::exchange(lines, {});
    }

    void logMessage(ZrHmiSrv::Message message) override {
        std::string line(message.name().view());
        const ZrHmiSrv::Value& parameters = message.payload();
        for (auto entry = parameters.begin(); entry != parameters.end(); ++entry)
            line += " " + textOf(*entry);
        const bool usual = message.severity() == ZrHmiSrv::Severity::unspecified;
        if (!usual || textOf(message.time_raised()) != "now")
            line += " with another severity or time";
        note(line);
    }
    void reportCommunicationError(const ZrHmiSrv::Text& text) override {
        note("error " + std::string(text.view()));
    }
    void reportCommunicationError(const ZrHmiSrv::Text& text,
                                  const std::exception& exception) override {
        note("error " + std::string(text.view()) + " " + exception.what());
    }
    void sendMessage(ZrHmiSrv::Message message) override {
        note("send " + textOf(message.time_raised()));
    }
    void raiseAlarm(ZrHmiSrv::Alarm alarm) override { note("raise ", alarm); }
    void updateAlarm(ZrHmiSrv::Alarm alarm, bool removed) override {
        note(removed ? "remove " : "update ", alarm);
    }
    void forgetEvent(ZrHmiSrv::Event event) override {
        const ZrHmiSrv::Alarm alarm = event.payload().get_alarm();
        note("forget " +
             (alarm.isset() ? std::to_string(alarm.id()) : textOf(event.time_received())));
    }
    bool preloadTranslations() override { return preload; }

private:
    void note(const std::string& what, const ZrHmiSrv::Alarm& alarm) {
        alarms.push_back(alarm);
        note(what + std::to_string(alarm.id()));
    }
    void note(const std::string& line) {
        {
            std::lock_guard lock(mutex);
            lines.push_back(line);
        }
        onCall(line);
    }

    std::mutex mutex;  ///< guards the lines
    std::vector<std::string> lines;
};

}  // namespace bridge_test
