#pragma once

#include <functional>
#include <string>
#include <vector>

#include "events/ILoggingFunctions.h"

namespace bridge_test {

/// Keeps every call as a line: "NEW_ALARM_RAISED Filler 1 5s", "raise 1", "update 1", "remove 1",
/// "send 5s", "forget 1" ("forget 5s" for a message), "error Filler text". Times are seconds since
/// 1970; "-" is unset and "now" within the last minute.
class RecordingLogging final : public ZrHmiEventLogger::ILoggingFunctions {
public:
    std::function<void(const std::string& line)> onCall = [](const std::string&) {};
    std::vector<ZrHmiSrv::Alarm> alarms;  ///< as they were raised and updated

    /// The lines since the last call of this function.
    std::vector<std::string> take() { return std::exchange(lines, {}); }

    void logMessage(ZrHmiSrv::Message message) override;
    void reportCommunicationError(const ZrHmiSrv::Text& text) override;
    void reportCommunicationError(const ZrHmiSrv::Text& text,
                                  const std::exception& exception) override;
    void sendMessage(ZrHmiSrv::Message message) override;
    void raiseAlarm(ZrHmiSrv::Alarm alarm) override;
    void updateAlarm(ZrHmiSrv::Alarm alarm, bool removed) override;
    void forgetEvent(ZrHmiSrv::Event event) override;
    bool preloadTranslations() override { return false; }

private:
    void note(std::string line);

    std::vector<std::string> lines;
};

std::string textOf(ZrHmiSrv::Timestamp time);

}  // namespace bridge_test
