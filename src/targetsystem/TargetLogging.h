#pragma once

#include <atomic>

#include "events/ILoggingFunctions.h"

namespace ZrHmiEventLogger {

/// A target system's way to the host, which ends when the target is retired: whatever comes back
/// late from a call is dropped. Any thread.
class TargetLogging final : public ILoggingFunctions {
public:
    TargetLogging(ILoggingFunctions& host, const std::atomic<bool>& retired)
        : host(host), retired(retired) {}

    void logMessage(ZrHmiSrv::Message message) override {
        if (!retired)
            host.logMessage(std::move(message));
    }
    void reportCommunicationError(const ZrHmiSrv::Text& text) override {
        if (!retired)
            host.reportCommunicationError(text);
    }
    void reportCommunicationError(const ZrHmiSrv::Text& text,
                                  const std::exception& exception) override {
        if (!retired)
            host.reportCommunicationError(text, exception);
    }
    void sendMessage(ZrHmiSrv::Message message) override {
        if (!retired)
            host.sendMessage(std::move(message));
    }
    void raiseAlarm(ZrHmiSrv::Alarm alarm) override {
        if (!retired)
            host.raiseAlarm(std::move(alarm));
    }
    void updateAlarm(ZrHmiSrv::Alarm alarm, bool removed) override {
        if (!retired)
            host.updateAlarm(std::move(alarm), removed);
    }
    void forgetEvent(ZrHmiSrv::Event event) override {
        if (!retired)
            host.forgetEvent(std::move(event));
    }
    bool preloadTranslations() override { return !retired && host.preloadTranslations(); }

private:
    ILoggingFunctions& host;
    const std::atomic<bool>& retired;
};

}  // namespace ZrHmiEventLogger
