/// The extension as the target systems' way to the host.
#include "events/DiagnosticMessage.h"
#include "extension/ZrHmiEventLogger.h"

using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmOperation;
using ZrHmiSrv::Event;
using ZrHmiSrv::Message;
using ZrHmiSrv::Text;

namespace ZrHmiEventLogger {

namespace {

constexpr const char* communicationError =
    "An error occurred in the communication with the Corvane EventLogger.";

Message errorMessage(const Text& text, const char* explanation) {
    return diagnosticMessage("CORVANE_EVENTLOGGER_ERROR", {text, -1.0, explanation});
}

}  // namespace

void ZrHmiEventLogger::logMessage(Message message) {
    message.set_domain(context.domain());
    host->send_message(context, message, false);
}

void ZrHmiEventLogger::reportCommunicationError(const Text& text) {
    logMessage(errorMessage(text, communicationError));
}

void ZrHmiEventLogger::reportCommunicationError(const Text& text, const std::exception& exception) {
    const char* what = exception.what();
    logMessage(errorMessage(text, what && *what ? what : communicationError));
}

void ZrHmiEventLogger::sendMessage(Message message) { host->send_message(context, message, true); }

void ZrHmiEventLogger::raiseAlarm(Alarm alarm) {
    host->apply_alarm(context, AlarmOperation::raise, std::move(alarm));
}

void ZrHmiEventLogger::updateAlarm(Alarm alarm, bool removed) {
    host->apply_alarm(context, removed ? AlarmOperation::remove : AlarmOperation::update,
                      std::move(alarm));
}

void ZrHmiEventLogger::forgetEvent(Event event) { host->drop_event(context, std::move(event)); }

bool ZrHmiEventLogger::preloadTranslations() { return configuration.preloadTranslations(); }

void ZrHmiEventLogger::sendResetTemporaryEvents() {
    logMessage(diagnosticMessage("RESET_TEMPORARY_EVENTS", {}));
    host->reset_events(context);
}

}  // namespace ZrHmiEventLogger
