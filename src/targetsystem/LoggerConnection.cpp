#include "targetsystem/LoggerConnection.h"

#include <exception>

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

bool LoggerConnection::reportsConnected() const {
    VARIANT_BOOL connected = VARIANT_FALSE;
    if (logger)
        check(logger->get_IsConnected(&connected));
    return connected == VARIANT_TRUE;
}

bool LoggerConnection::isUp(const std::atomic<bool>& disabled) {
    Lock lock(connectionMutex);
    const bool up = !disabled && reportsConnected();
    Lock stateLock(stateMutex);
    if (up && connectionState)
        *connectionState = {true, std::nullopt};
    return up;
}

void LoggerConnection::settle(const std::atomic<bool>& disabled, bool wasDown) {
    Lock lock(connectionMutex);
    std::exception_ptr failure;
    bool up = false;
    try {
        up = !disabled && reportsConnected();
    } catch (...) {
        failure = std::current_exception();
    }
    settleState(up, wasDown);
    if (failure)
        std::rethrow_exception(failure);
}

void LoggerConnection::settleState(bool up, bool wasDown) {
    Lock lock(stateMutex);
    if (up)
        connectionState = ConnectionState{true, S_OK};
    else if (wasDown && connectionState)
        connectionState->connected = false;
    else
        connectionState = ConnectionState{false, S_OK};
}

bool LoggerConnection::connect(const std::string& netId, bool preloadTranslations,
                               const std::atomic<bool>& abandoned) {
    Lock lock(connectionMutex);
    if (abandoned)
        return false;
    connectLogger(netId, preloadTranslations);
    if (abandoned) {
        logger->Disconnect();
        return false;
    }
    setState({true, S_OK});
    return true;
}

void LoggerConnection::connectLogger(const std::string& netId, bool preloadTranslations) {
    ComPtr<IZrConnectionSettings> settings;
    check(ZrAtlCom::createInstance(CLSID_ConnectionSettings, settings));
    check(settings->put_PreloadTranslations(toVariantBool(preloadTranslations)));
    const ScopedBstr address(netId);
    HRESULT hr = logger->ConnectWithSettings(settings.get(), address.get());
    if (hr == serviceNotSupported)
        hr = logger->Connect(address.get());
    check(hr);
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
