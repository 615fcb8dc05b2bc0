#include "targetsystem/TargetSystem.h"

#include <algorithm>
#include <limits>

#include "events/DiagnosticMessage.h"
#include "targetsystem/proxy/CAtlException.h"
#include "targetsystem/proxy/ErrorText.h"

using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Severity;

namespace ZrHmiEventLogger {

namespace {

/// What the logger can be told: a longer time-out is its longest.
ULONG toMilliseconds(ZrHmiSrv::Timespan timeout) {
    return static_cast<ULONG>(
        std::clamp<std::int64_t>(timeout.milliseconds(), 0, std::numeric_limits<ULONG>::max()));
}

}  // namespace

TargetSystem::TargetSystem(TargetSystemSettings given, ZrHmiSrv::Text domain,
                           LocalAddress& localAddress, ILoggingFunctions& host,
                           const std::atomic<bool>& stopFlag, std::atomic<std::int32_t>& hostIds)
    : TargetSystemBase(std::move(given), std::move(domain), host, stopFlag, hostIds),
      store(context),
      lifecycle(context, store),
      importer(context, store, notifications, lifecycle),
      textLookup(context, logger, disabled),
      connection(settings,
                 {context, localAddress, logger, store, importer, textLookup, disabled}) {}

void TargetSystem::prepare() {
    if (prepared)
        return;
    if (!logger.get())
        createLogger();
    if (logger.get())
        logger.setTimeout(toMilliseconds(settings.timeout));
    prepared = true;
    try {
        connection.subscribe(this);
    } catch (...) {
        // It is tried again with every connect, and told then.
    }
}

void TargetSystem::createLogger() {
    const HRESULT hr = logger.create();
    if (FAILED(hr))
        logging.logMessage(diagnosticMessage("CAN_NOT_CREATE_PROXY",
                                             {name(), ZrAtlCom::hexText(hr)}, Severity::error));
}

HRESULT TargetSystem::ClearLoggedEvents() {
    try {
        return logger.get() ? ZrAtlCom::check(logger.get()->ClearLoggedEvents()) : E_FAIL;
    } catch (...) {
        reportFailure();
        return E_FAIL;
    }
}

void TargetSystem::beginRetiring(TimePoint deadline) {
    retired = true;
    // A change that is being told is told wholly, as long as the host does not hang in it.
    store.awaitChange(deadline);
    logging.close(deadline);
}

void TargetSystem::retire(TimePoint deadline) {
    beginRetiring(deadline);
    connection.end(deadline);
}

ConnectionState TargetSystem::GetConnectionState() const {
    return disabled ? ConnectionState{} : logger.state().value_or(ConnectionState{});
}

ResultPair TargetSystem::confirm(const ZrHmiSrv::Alarm& alarm) {
    const ResultPair ready = textLookup.requireConnection();
    if (!ready.succeeded())
        return ready;
    const HRESULT hr = lifecycle.confirm(alarm);
    return SUCCEEDED(hr)
               ? ResultPair()
               : ResultPair(ErrorValue::operation_failed, ZrHmiSrv::Text(ZrAtlCom::describe(hr)));
}

}  // namespace ZrHmiEventLogger
