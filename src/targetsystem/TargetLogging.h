#pragma once

#include "events/ILoggingFunctions.h"
#include "targetsystem/HostGate.h"

namespace ZrHmiEventLogger {

/// A target system's way to the host, which ends when the target is retired: whatever comes back
/// late from a call is dropped. Any thread.
class TargetLogging final : public ILoggingFunctions {
public:
    explicit TargetLogging(ILoggingFunctions& host) : host(host) {}

    /// Nothing passes from now on. Returns when what is being told has been told, or at the
    /// deadline, which is what ends it for a thread that is telling something itself.
    void close(std::chrono::steady_clock::time_point deadline) { gate.close(deadline); }

    void logMessage(ZrHmiSrv::Message message) override {
        pass([&] { host.logMessage(std::move(message)); });
    }
    void reportCommunicationError(const ZrHmiSrv::Text& text) override {
        pass([&] { host.reportCommunicationError(text); });
    }
    void reportCommunicationError(const ZrHmiSrv::Text& text,
                                  const std::exception& exception) override {
        pass([&] { host.reportCommunicationError(text, exception); });
    }
    void sendMessage(ZrHmiSrv::Message message) override {
        pass([&] { host.sendMessage(std::move(message)); });
    }
    void raiseAlarm(ZrHmiSrv::Alarm alarm) override {
        pass([&] { host.raiseAlarm(std::move(alarm)); });
    }
    void updateAlarm(ZrHmiSrv::Alarm alarm, bool removed) override {
        pass([&] { host.updateAlarm(std::move(alarm), removed); });
    }
    void forgetEvent(ZrHmiSrv::Event event) override {
        pass([&] { host.forgetEvent(std::move(event)); });
    }
    bool preloadTranslations() override {
        bool preload = false;
        pass([&] { preload = host.preloadTranslations(); });
        return preload;
    }

private:
    template <class Tell>
    void pass(Tell tell) {
        if (const HostGate::Call call(gate); call)
            tell();
    }

    ILoggingFunctions& host;
    HostGate gate;
};

}  // namespace ZrHmiEventLogger
