/// Target systems that are added, changed or removed while the server runs.
#include "extension/ZrHmiEventLogger.h"

using ZrHmiSrv::Context;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Text;

namespace ZrHmiEventLogger {

namespace {

constexpr std::string_view targetSystemsKey = "TARGET_SYSTEMS";

}  // namespace

void ZrHmiEventLogger::value_set(ResultPair& result, const Context&, const char* path) {
    try {
        Lock lock(configMutex);
        result = ErrorValue::success;
        const auto names = splitPath(path ? path : "");
        if (names.size() != 2)
            return;
        if (names[0] != targetSystemsKey) {
            result = ErrorValue::unknown_command;
            return;
        }
        const ZrHmiSrv::Value entry = configuration.read(path);
        if (!isCompleteTargetSystem(entry)) {
            result = ErrorValue::invalid_configuration;
            return;
        }
        result = applyTargetSystem(readTargetSystem(Text(names[1]), entry));
    } catch (...) {
        result = ErrorValue::operation_failed;
        reportCurrentException(*this, productName);
    }
}

ResultPair ZrHmiEventLogger::applyTargetSystem(const TargetSystemConfiguration& configured) {
    const std::int64_t eventLimit = configuration.eventLimit();
    const auto timeout = configuration.timeout();
    if (!timeout)
        return ErrorValue::invalid_configuration;
    const TargetSystemPointer running = findTargetSystem(configured.name.view());
    if (running && running->netId() == fullAddress(configured) &&
        running->isEnabled() == configured.enabled)
        return ErrorValue::success;

    const TargetSystemPointer replacement = createTargetSystem(configured, *timeout, eventLimit);
    // Before the replacement can be found: the two are never connected at a time.
    if (running)
        running->retire();
    exchangeTargetSystem(configured.name.view(), replacement);
    if (replacement->isEnabled())
        connect(*replacement);
    sendResetTemporaryEvents();
    return ErrorValue::success;
}

void ZrHmiEventLogger::value_deleted(ResultPair& result, const Context&, const char* path) {
    try {
        Lock lock(configMutex);
        const auto names = splitPath(path ? path : "");
        if (names[0] != targetSystemsKey) {
            result = ErrorValue::unknown_command;
            return;
        }
        result = ErrorValue::success;
        if (names.size() < 2)
            return;
        if (const auto former = exchangeTargetSystem(names[1], nullptr)) {
            former->retire();
            sendResetTemporaryEvents();
        }
    } catch (...) {
        result = ErrorValue::operation_failed;
        reportCurrentException(*this, productName);
    }
}

}  // namespace ZrHmiEventLogger
