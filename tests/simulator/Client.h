#pragma once

#include <condition_variable>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Mutex.h"
#include "support/Simulation.h"
#include "targetsystem/proxy/EventCookie.h"
#include "targetsystem/proxy/IDispEventSimpleImpl.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

constexpr HRESULT protocolError(std::uint32_t code) {
    return static_cast<HRESULT>(0x98110000u + code);
}

/// A client of one logger, with what the logger notified of as texts such as "cleared 1 removed",
/// where 1 is the event id. The other members answer what the proxy answered.
class Client final
    : public ZrAtlCom::IDispEventSimpleImpl<1, Client,
                                            &ZrEventLoggerFnxProxyLib::IID__IZrEventLoggerEvents> {
public:
    using Alarm = ZrAtlCom::ComPtr<ZrEventLoggerFnxProxyLib::IZrAlarm>;

    Client();
    HRESULT connect(const std::string& netId = bridge_test::fillerNetId);
    bool isConnected();
    HRESULT setTimeout(ULONG milliseconds);
    HRESULT unadvise() { return cookie.unadvise(); }
    std::vector<Alarm> activeAlarms();

    /// Called in each notification, on the library's thread.
    std::function<void(const std::string&)> inside;
    /// All notifications so far, once there are `count` of them.
    std::vector<std::string> waitFor(std::size_t count);

    /// None: `Invoke` takes the notifications as they are.
    static ZrAtlCom::SinkTable sinkTable() { return {}; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*,
                                     EXCEPINFO*, UINT*) override;

    ZrAtlCom::ComPtr<ZrEventLoggerFnxProxyLib::IZrEventLogger4> logger;

private:
    Mutex mutex;
    std::condition_variable_any arrived;
    std::vector<std::string> texts GUARDED_BY(mutex);
    ZrAtlCom::EventCookie cookie;
};

/// Two runtimes, and a client that is advised but not connected yet.
class SimulatorTest : public testing::Test {
protected:
    /// In actions of the filler ' stands for ", CLASS for the event class, #1 for its event 1.
    void act(const std::string& actions) { simulation.act(inFull(actions)); }
    static std::string inFull(std::string text);
    void waitForCalls(const char* operation, int count);

    bridge_test::Simulation simulation;
    Client client;
};
