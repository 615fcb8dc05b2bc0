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
    callHost([&] { host->send_message(context, message, false); });
}

void ZrHmiEventLogger::reportCommunicationError(const Text& text) {
    logMessage(errorMessage(text, communicationError));
}

void ZrHmiEventLogger::reportCommunicationError(const Text& text, const std::exception& exception) {
    const char* what = exception.what();
    logMessage(errorMessage(text, what && *what ? what : communicationError));
}

void ZrHmiEventLogger::reportRefusal(const Text& subject, const std::string& reason) noexcept {
    try {
        logMessage(errorMessage(subject, reason.c_str()));
    } catch (...) {
        // The result tells of it as well.
    }
}

void ZrHmiEventLogger::reportFailure() noexcept {
    try {
        reportCurrentException(*this, productName());
    } catch (...) {
        // There is no memory even for who speaks.
    }
}

void ZrHmiEventLogger::sendMessage(Message message) {
    callHost([&] { host->send_message(context, message, true); });
}

void ZrHmiEventLogger::raiseAlarm(Alarm alarm) {
    callHost([&] { host->apply_alarm(context, AlarmOperation::raise, std::move(alarm)); });
}

void ZrHmiEventLogger::updateAlarm(Alarm alarm, bool removed) {
    const auto operation = removed ? AlarmOperation::remove : AlarmOperation::update;
    callHost([&] { host->apply_alarm(context, operation, std::move(alarm)); });
}

void ZrHmiEventLogger::forgetEvent(Event event) {
    callHost([&] { host->drop_event(context, std::move(event)); });
}

bool ZrHmiEventLogger::preloadTranslations() { return configuration.preloadTranslations(); }

/// Throws when the host could not be told. A log entry that fails changes nothing.
void ZrHmiEventLogger::sendResetTemporaryEvents() {
    try {
        logMessage(diagnosticMessage("RESET_TEMPORARY_EVENTS", {}));
    } catch (...) {
        reportFailure();
    }
    callHost([&] { host->reset_events(context); });
}

}  // namespace ZrHmiEventLogger
