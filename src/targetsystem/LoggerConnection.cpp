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
    return ZrAtlCom::createInstance(CLSID_EventLogger, logger);
}

void LoggerConnection::setTimeout(ULONG milliseconds) {
    const auto settings = receiveObject<IZrLoggerSettings>([&](IZrLoggerSettings** found) {
        return logger->QueryInterface(InterfaceId<IZrLoggerSettings>::value(),
                                      reinterpret_cast<void**>(found));
    });
    check(settings->put_Timeout(milliseconds));
}

bool LoggerConnection::askLogger() const {
    VARIANT_BOOL connected = VARIANT_FALSE;
    if (logger)
        check(logger->get_IsConnected(&connected));
    return connected == VARIANT_TRUE;
}

bool LoggerConnection::isConnected() {
    Lock lock(connectionMutex);
    return askLogger();
}

bool LoggerConnection::isConnectedNow() {
    const auto known = state();
    if (!known || !known->connected)
        return false;
    if (!connectionMutex.try_lock())
        return true;
    const Lock lock(connectionMutex, std::adopt_lock);
    return askLogger();
}

void LoggerConnection::connect(const std::string& netId, bool preloadTranslations) {
    ComPtr<IZrConnectionSettings> settings;
    check(ZrAtlCom::createInstance(CLSID_ConnectionSettings, settings));
    check(settings->put_PreloadTranslations(toVariantBool(preloadTranslations)));
    const ScopedBstr address(netId);
    Lock lock(connectionMutex);
    HRESULT hr = logger->ConnectWithSettings(settings.get(), address.get());
    if (hr == serviceNotSupported)
        hr = logger->Connect(address.get());
    check(hr);
    preloading = preloadTranslations;
}

void LoggerConnection::disconnect() {
    Lock lock(connectionMutex);
    if (logger)
        check(logger->Disconnect());
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
