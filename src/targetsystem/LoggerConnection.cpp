#include "targetsystem/LoggerConnection.h"

#include "events/ProxyValue.h"
#include "platform/Text.h"
#include "targetsystem/proxy/CAtlException.h"
#include "targetsystem/proxy/CreateInstance.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::check;
using ZrAtlCom::ComPtr;

namespace ZrHmiEventLogger {

namespace {

/// A runtime of an older kind: it knows only the plain connect.
constexpr HRESULT serviceNotSupported = static_cast<HRESULT>(0x98110701);

constexpr VARIANT_BOOL toVariantBool(bool value) {
    return value ? VARIANT_TRUE : VARIANT_FALSE;
}

}  // namespace

HRESULT LoggerConnection::create() {
    const HRESULT hr = ZrAtlCom::createInstance(CLSID_EventLogger, logger);
    usable = logger.get();
    return hr;
}

void LoggerConnection::setTimeout(ULONG milliseconds) {
    const auto settings = receiveObject<IZrLoggerSettings>([&](IZrLoggerSettings** found) {
        return logger->QueryInterface(InterfaceId<IZrLoggerSettings>::value(),
                                      reinterpret_cast<void**>(found));
    });
    check(settings->put_Timeout(milliseconds));
}

// A failure is looked at when the lock is gone: its text may have to be asked for.

HRESULT LoggerConnection::askLogger(bool& connected) const {
    VARIANT_BOOL answer = VARIANT_FALSE;
    const HRESULT hr = logger ? logger->get_IsConnected(&answer) : S_OK;
    connected = answer == VARIANT_TRUE;
    return hr;
}

bool LoggerConnection::isConnected() {
    bool connected = false;
    Lock lock(connectionMutex);
    const HRESULT hr = askLogger(connected);
    lock.unlock();
    check(hr);
    return connected;
}

bool LoggerConnection::isConnectedNow() {
    const auto known = state();
    if (!known || !known->connected)
        return false;
    if (!connectionMutex.try_lock())
        return true;
    bool connected = false;
    Lock lock(connectionMutex, std::adopt_lock);
    const HRESULT hr = askLogger(connected);
    lock.unlock();
    check(hr);
    return connected;
}

void LoggerConnection::connect(const std::string& netId, bool preloadTranslations,
                               const EventContext& context) {
    ComPtr<IZrConnectionSettings> settings;
    check(ZrAtlCom::createInstance(CLSID_ConnectionSettings, settings));
    check(settings->put_PreloadTranslations(toVariantBool(preloadTranslations)));
    const ScopedBstr address(netId);
    Lock lock(connectionMutex);
    HRESULT hr = logger->ConnectWithSettings(settings.get(), address.get());
    const bool isOlder = hr == serviceNotSupported;
    if (isOlder && !context.isOver())
        hr = logger->Connect(address.get());
    lock.unlock();
    check(hr);
    preloading = preloadTranslations && !isOlder;
}

void LoggerConnection::disconnect() {
    if (!logger)
        return;
    Lock lock(connectionMutex);
    const HRESULT hr = logger->Disconnect();
    lock.unlock();
    check(hr);
}

std::optional<ConnectionState> LoggerConnection::state() const {
    Lock lock(stateMutex);
    return connectionState;
}

void LoggerConnection::setState(ConnectionState state) {
    Lock lock(stateMutex);
    connectionState = state;
}

}  // namespace ZrHmiEventLogger
