#include "targetsystem/TargetConnection.h"

#include <stdexcept>

#include "events/Abandoned.h"
#include "events/DiagnosticMessage.h"
#include "targetsystem/FnxHelper.h"
#include "targetsystem/ReasonText.h"
#include "targetsystem/proxy/CAtlException.h"
#include "targetsystem/proxy/CatchToHresult.h"
#include "targetsystem/proxy/ErrorText.h"

using ZrAtlCom::CAtlException;
using ZrAtlCom::check;
using ZrAtlCom::hexText;
using ZrHmiSrv::Severity;

namespace ZrHmiEventLogger {

HRESULT TargetConnection::subscribe(IUnknown* target) {
    sink = target;
    if (!with.logger.get())
        return E_FAIL;
    return eventCookie.advise(with.logger.get(), target,
                              ZrEventLoggerFnxProxyLib::IID__IZrEventLoggerEvents);
}

bool TargetConnection::check(ImportResultPtr& importResult) {
    const auto before = with.logger.state();
    const bool wasDown = before && !before->connected;
    // Before the logger is asked: a reconnect that is requested meanwhile waits for the next check,
    // or the old connection might be taken for the new one.
    const bool wasImported = imported;
    const Answer answer = probe();
    bool up = answer == Answer::connected;
    failedToImport = false;
    if (with.disabled) {
        if (up) {
            disconnect();
            hostIsStale = true;
        }
        up = false;
    } else if (!up || !wasImported || !eventCookie.advised()) {
        if (!up && before && before->connected)
            with.logger.setState({false, S_OK});
        up = answer != Answer::failed && connect(up, wasImported, importResult);
        if (!up)
            removeAlarms();
    }
    settle(up, wasDown || failedToImport);
    attempted.reach();
    if (const auto news = with.texts.takeNews())
        with.context.logging.logMessage(diagnosticMessage("TRANSLATION_CACHE_USED",
                                                          {settings.name, news->hits, news->misses},
                                                          Severity::verbose));
    return takeStale();
}

TargetConnection::Answer TargetConnection::probe() {
    try {
        if (with.disabled || with.context.isOver() || !with.logger.isConnected())
            return Answer::notConnected;
        if (with.logger.state())
            with.logger.setState({true, std::nullopt});
        return Answer::connected;
    } catch (...) {
        const HRESULT hr = ZrAtlCom::hresultOfCurrentException();
        reportFailure();
        connectFailed(hr);
        return Answer::failed;
    }
}

/// `keepsError`: why it is not connected was known before, or has just been found out.
void TargetConnection::settle(bool up, bool keepsError) {
    const auto state = with.logger.state();
    if (up)
        with.logger.setState({true, S_OK});
    else if (keepsError && state)
        with.logger.setState({false, state->connectError});
    else
        with.logger.setState({false, S_OK});
}

bool TargetConnection::connect(ImportResultPtr& importResult) {
    const bool wasImported = imported;
    const Answer answer = probe();
    const bool connected = answer != Answer::failed &&
                           connect(answer == Answer::connected, wasImported, importResult);
    attempted.reach();
    return connected;
}

bool TargetConnection::connect(bool up, bool wasImported, ImportResultPtr& importResult) {
    if (!with.logger.get() || with.context.isOver())
        return false;
    if (up && wasImported && eventCookie.advised())
        return true;
    const bool established = establish(up);
    attempted.reach();
    return established && import(importResult);
}

bool TargetConnection::establish(bool up) {
    try {
        // Not to hear of what happens would be worse than not to be connected.
        ZrAtlCom::check(subscribe(sink));
        if (!up)
            connectLogger();
        return !with.context.isOver();
    } catch (const CAtlException& exception) {
        connectFailed(exception.hresult());
    } catch (...) {
        reportFailure();
    }
    return false;
}

void TargetConnection::connectLogger() {
    const bool preloadTranslations = with.context.logging.preloadTranslations();
    with.disabled.exchange(false);
    const std::string address = netId();
    if (with.context.isOver())
        return;
    with.logger.connect(address, preloadTranslations, with.context);
    if (with.context.isOver())
        return;
    with.logger.setState({true, S_OK});
    with.context.logging.logMessage(diagnosticMessage("TARGET_SYSTEM_CONNECTED", {settings.name}));
}

std::string TargetConnection::netId() {
    if (!FnxHelper::needsLocalAddress(settings.address))
        return settings.address;
    const std::string local = with.localAddress.lookUp();
    if (local.empty())
        throw std::runtime_error("The address of this device, which completes \"" +
                                 settings.address + "\", is not known yet: there is no router.");
    return FnxHelper::resolveAddress(settings.address, local);
}

bool TargetConnection::import(ImportResultPtr& importResult) {
    try {
        // Before the import: what asks for another one meanwhile is not to be overlooked.
        imported = true;
        mayMakeUp = !makingUp.exchange(false);
        with.texts.clearCache();
        const ImportResultPtr result = with.importer.run(*with.logger.get());
        // Also what was asked for on the connection before, while the import ran.
        with.texts.clearCache();
        hostIsStale = true;
        logImport(*result);
        if (result->databaseChange)
            databaseChanged(*result->databaseChange);
        importResult = result;
        return true;
    } catch (const Abandoned&) {
        return false;
    } catch (...) {
        const HRESULT hr = ZrAtlCom::hresultOfCurrentException();
        reportFailure();
        importFailed(hr);
        return false;
    }
}

/// The next check connects, where the logger let go of the connection, and imports in any case.
void TargetConnection::importFailed(HRESULT hr) {
    if (with.importer.exchangedStore())
        hostIsStale = true;
    failedToImport = true;
    with.logger.setState({false, hr});
    disconnectLogger();
    removeAlarms();
}

void TargetConnection::logImport(const ImportResult& result) {
    const auto milliseconds = std::chrono::duration<double, std::milli>(result.duration).count();
    with.context.logging.logMessage(
        diagnosticMessage("LOGGED_EVENTS_IMPORTED",
                          {settings.name, result.number, result.loggedEvents, result.activeAlarms,
                           result.keptIds, result.recorded, milliseconds, result.rejected,
                           result.overruns},
                          Severity::verbose));
}

void TargetConnection::connectFailed(HRESULT hr) {
    with.logger.setState({false, hr});
    with.context.logging.logMessage(
        diagnosticMessage("TARGET_SYSTEM_CONNECT_FAILED", {settings.name, hexText(hr)}));
}

void TargetConnection::disconnect() {
    if (!with.disabled) {
        unsubscribe();
        disconnectLogger();
    }
    removeAlarms();
}

void TargetConnection::end(TimePoint deadline) {
    if (ended.exchange(true))
        return;
    unsubscribe();
    if (std::chrono::steady_clock::now() < deadline)
        requestReconnect();
}

void TargetConnection::disconnectLogger() {
    try {
        with.logger.disconnect();
    } catch (...) {
        reportFailure();
    }
}

void TargetConnection::unsubscribe() {
    try {
        ZrAtlCom::check(eventCookie.unadvise());
    } catch (...) {
        reportFailure();
    }
}

void TargetConnection::removeAlarms() {
    imported = false;
    if (with.store.removeAlarms())
        hostIsStale = true;
}

HRESULT TargetConnection::requestReconnect() {
    if (!with.logger.get())
        return E_FAIL;
    const HRESULT hr =
        ZrAtlCom::catchToHresult([this] { return with.logger.get()->Disconnect(); });
    // Only now, or a check might take the old connection for the new one. Also where the logger
    // refuses to disconnect, the next check imports again.
    imported = false;
    if (SUCCEEDED(hr))
        return hr;
    with.context.logging.reportCommunicationError(settings.name);
    return E_FAIL;
}

void TargetConnection::makeUpForMisfit() {
    if (!mayMakeUp.exchange(false))
        return;
    makingUp = true;
    requestReconnect();
}

void TargetConnection::databaseChanged(DatabaseChangeReason reason) {
    requestReconnect();
    with.context.logging.logMessage(
        diagnosticMessage("DATABASE_CHANGED", {settings.name, reasonText(reason)}));
}

/// Of the exception that is being handled.
void TargetConnection::reportFailure() {
    reportCurrentException(with.context.logging, settings.name);
}

}  // namespace ZrHmiEventLogger
