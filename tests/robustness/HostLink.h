#pragma once

#include <map>
#include <string>
#include <vector>

#include "events/ILoggingFunctions.h"
#include "host/Listeners.h"
#include "platform/Mutex.h"
#include "support/RecordingHost.h"

namespace bridge_test {

/// Takes the extension's place between one target system and a host, and watches that no alarm
/// id is ever given to two alarms. Any thread.
class HostLink final : public ZrHmiEventLogger::ILoggingFunctions, public ZrHmiSrv::IEventReceiver {
public:
    explicit HostLink(RecordingHost& host) : host(host) {}

    void logMessage(ZrHmiSrv::Message message) override;
    void reportCommunicationError(const ZrHmiSrv::Text& text) override;
    void reportCommunicationError(const ZrHmiSrv::Text& text,
                                  const std::exception& exception) override;
    void sendMessage(ZrHmiSrv::Message message) override;
    void raiseAlarm(ZrHmiSrv::Alarm alarm) override;
    void updateAlarm(ZrHmiSrv::Alarm alarm, bool removed) override;
    void forgetEvent(ZrHmiSrv::Event event) override;
    bool preloadTranslations() override { return false; }

    void replace_events(const char* target, std::span<const ZrHmiSrv::Event> events) override;

    /// What went wrong with ids, one line each.
    std::vector<std::string> idConflicts() const;
    /// The texts of the communication errors so far.
    std::vector<std::string> errors() const;

private:
    void note(const ZrHmiSrv::Alarm& alarm);

    RecordingHost& host;
    const ZrHmiSrv::Context context{"TestDomain"};
    mutable Mutex mutex;
    std::map<int, std::string> owners GUARDED_BY(mutex);  ///< by id, the alarm that has it
    std::vector<std::string> conflicts GUARDED_BY(mutex);
    std::vector<std::string> reported GUARDED_BY(mutex);
};

}  // namespace bridge_test
