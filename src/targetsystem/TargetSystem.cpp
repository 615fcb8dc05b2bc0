#include "targetsystem/TargetSystem.h"

#include "events/DiagnosticMessage.h"
#include "targetsystem/proxy/CAtlException.h"
#include "targetsystem/proxy/ErrorText.h"

using ZrAtlCom::CAtlException;
using ZrAtlCom::hexText;
using ZrEventLoggerFnxProxyLib::IID__IZrEventLoggerEvents;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Severity;

namespace ZrHmiEventLogger {

TargetSystem::TargetSystem(TargetSystemSettings settings, ZrHmiSrv::Text domain,
                           ILoggingFunctions& logging, const std::atomic<bool>& stopFlag,
                           std::atomic<std::int32_t>& hostIds)
    : TargetSystemBase(std::move(settings), std::move(domain), logging, stopFlag, hostIds),
      store(context),
      lifecycle(context, store),
      importer(context, store, notifications, lifecycle),
      textLookup(context, connection, disabled) {
    const HRESULT hr = connection.create();
    if (FAILED(hr)) {
        logging.logMessage(
            diagnosticMessage("CAN_NOT_CREATE_PROXY", {name(), hexText(hr)}, Severity::error));
        return;
    }
    connection.setTimeout(static_cast<ULONG>(this->settings.timeout.milliseconds()));
}

void TargetSystem::subscribe() {
    if (!connection.get() || retired)
        return;
    eventCookie.advise(connection.get(), this, IID__IZrEventLoggerEvents);
    // Retiring may have found nothing to unadvise a moment ago.
    if (retired)
        unsubscribe();
}

bool TargetSystem::Connect(ImportResultPtr& importResult) {
    Lock lock(importMutex);
    if (!connection.get() || retired)
        return false;
    try {
        const bool up = connection.isUp(disabled);
        if (up && imported)
            return true;
        return (up || establish()) && import(importResult);
    } catch (const CAtlException& exception) {
        ConnectFailed(exception.hresult());
    } catch (...) {
        reportFailure();
    }
    return false;
}

bool TargetSystem::establish() {
    const bool preloadTranslations = logging.preloadTranslations();
    disabled.exchange(false);
    subscribe();
    if (!connection.connect(netId(), preloadTranslations, retired))
        return false;
    logging.logMessage(diagnosticMessage("TARGET_SYSTEM_CONNECTED", {name()}));
    return true;
}

bool TargetSystem::import(ImportResultPtr& importResult) {
    if (retired)
        return false;
    try {
        // Before the import: what asks for another one meanwhile is not to be overlooked.
        imported = true;
        textLookup.clearCache();
        const ImportResultPtr result = importer.run(*connection.get());
        // Also what was asked for on the connection before, while the import ran.
        textLookup.clearCache();
        logImport(*result);
        if (result->databaseChange)
            OnDatabaseChanged(*result->databaseChange);
        importResult = result;
        return true;
    } catch (...) {
        reportFailure();
        if (importer.exchangedStore())
            hostIsStale = true;
        abandonConnection();
        return false;
    }
}

/// The next check connects, where the logger let go of the connection, and imports in any case.
void TargetSystem::abandonConnection() {
    disconnectLogger();
    removeAlarms();
    connection.setState({false, S_OK});
}

void TargetSystem::logImport(const ImportResult& result) {
    const auto milliseconds = std::chrono::duration<double, std::milli>(result.duration).count();
    logging.logMessage(
        diagnosticMessage("LOGGED_EVENTS_IMPORTED",
                          {name(), result.number, result.loggedEvents, result.activeAlarms,
                           result.keptIds, result.recorded, milliseconds},
                          Severity::verbose));
}

void TargetSystem::ConnectFailed(HRESULT hr) {
    if (retired)
        return;
    connection.setState({false, hr});
    logging.logMessage(diagnosticMessage("TARGET_SYSTEM_CONNECT_FAILED", {name(), hexText(hr)}));
}

bool TargetSystem::CheckConnection(ImportResultPtr& importResult) {
    const bool up = probe();
    const bool disabledMeanwhile = disabled;
    if (disabledMeanwhile && up) {
        Disconnect();
        hostIsStale = true;
    }
    const auto before = connection.state();
    if (!disabledMeanwhile && !(up && imported)) {
        if (Connect(importResult))
            hostIsStale = true;
        else
            removeAlarms();
    }
    settle(before && !before->connected);
    if (const auto news = textLookup.takeNews())
        logging.logMessage(diagnosticMessage(
            "TRANSLATION_CACHE_USED", {name(), news->hits, news->misses}, Severity::verbose));
    return hostIsStale.exchange(false);
}

bool TargetSystem::probe() {
    try {
        return connection.isUp(disabled);
    } catch (...) {
        reportFailure();
        return false;
    }
}

void TargetSystem::settle(bool wasDown) {
    try {
        connection.settle(disabled, wasDown);
    } catch (...) {
        reportFailure();
    }
}

void TargetSystem::Disconnect() {
    if (!disabled) {
        unsubscribe();
        disconnectLogger();
    }
    removeAlarms();
}

void TargetSystem::disconnectLogger() {
    try {
        connection.disconnect();
    } catch (...) {
        reportFailure();
    }
}

void TargetSystem::unsubscribe() {
    try {
        ZrAtlCom::check(eventCookie.unadvise());
    } catch (...) {
        reportFailure();
    }
}

void TargetSystem::removeAlarms() {
    imported = false;
    if (store.removeAlarms())
        hostIsStale = true;
}

HRESULT TargetSystem::RequestReconnect() {
    // Also where the logger refuses to disconnect, the next check imports again.
    imported = false;
    if (!connection.get())
        return E_FAIL;
    try {
        return ZrAtlCom::check(connection.get()->Disconnect());
    } catch (...) {
        if (!retired)
            logging.reportCommunicationError(name());
        return E_FAIL;
    }
}

HRESULT TargetSystem::ClearLoggedEvents() {
    if (!connection.get())
        return E_FAIL;
    try {
        return ZrAtlCom::check(connection.get()->ClearLoggedEvents());
    } catch (...) {
        reportFailure();
        return E_FAIL;
    }
}

void TargetSystem::retire() {
    retired = true;
    unsubscribe();
    RequestReconnect();
}

ConnectionState TargetSystem::GetConnectionState() const {
    return disabled ? ConnectionState{} : connection.state().value_or(ConnectionState{});
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

void TargetSystem::provideEvents(ZrHmiSrv::IEventReceiver& receiver) {
    store.provideEvents(receiver);
}

/// Of the exception that is being handled. What fails because the target was taken out of use is
/// no news.
void TargetSystem::reportFailure() {
    if (!retired)
        reportCurrentException(logging, name());
}

}  // namespace ZrHmiEventLogger
