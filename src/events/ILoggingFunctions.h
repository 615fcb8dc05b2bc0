#pragma once

#include <exception>

#include "host/Event.h"

namespace ZrHmiEventLogger {

/// The way from a target system to the host. The extension implements it; it outlives every
/// target system. Any thread. Calls reach the host at once, on the calling thread.
class ILoggingFunctions {
public:
    /// An entry of the server's log, in the extension's domain.
    virtual void logMessage(ZrHmiSrv::Message message) = 0;
    /// "CORVANE_EVENTLOGGER_ERROR" with a text, usually the name of the target system.
    virtual void reportCommunicationError(const ZrHmiSrv::Text& text) = 0;
    virtual void reportCommunicationError(const ZrHmiSrv::Text& text,
                                          const std::exception& exception) = 0;
    /// An event for the clients, as it is.
    virtual void sendMessage(ZrHmiSrv::Message message) = 0;
    virtual void raiseAlarm(ZrHmiSrv::Alarm alarm) = 0;
    virtual void updateAlarm(ZrHmiSrv::Alarm alarm, bool removed) = 0;
    virtual void forgetEvent(ZrHmiSrv::Event event) = 0;
    /// The configured "PRELOAD_TRANSLATIONS", read anew.
    virtual bool preloadTranslations() = 0;
    virtual ~ILoggingFunctions() = default;
};

/// Reports the exception that is being handled, with its text when it has one. Call from a
/// catch block. Abandoned is not reported. When even reporting fails there is nobody left to tell.
void reportCurrentException(ILoggingFunctions& logging, const ZrHmiSrv::Text& targetName) noexcept;

}  // namespace ZrHmiEventLogger
