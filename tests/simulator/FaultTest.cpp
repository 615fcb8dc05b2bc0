#include <future>

#include "simulator/Client.h"
#include "simulator/Control.h"
#include "targetsystem/proxy/CreateInstance.h"

using bridge_test::packerNetId;
using namespace ZrEventLoggerFnxProxyLib;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

namespace {

class FaultTest : public SimulatorTest {
protected:
    HRESULT clearLog() { return client.logger->ClearLoggedEvents(); }
    std::vector<HRESULT> clearLog(int times) {
        std::vector<HRESULT> results;
        for (int i = 0; i < times; ++i)
            results.push_back(clearLog());
        return results;
    }
};

constexpr HRESULT timedOut = protocolError(0x745);
constexpr HRESULT notConnected = protocolError(0x748);
using Results = std::vector<HRESULT>;

TEST_F(FaultTest, FailsTheCallsThatItNames) {
    const std::string fail = "{'do': 'fail', 'hresult': '0x80004005', 'call': ";
    act(fail + "'CreateInstance'}");
    ZrAtlCom::ComPtr<IZrEventLogger4> none;
    EXPECT_EQ(ZrAtlCom::createInstance(CLSID_EventLogger, none), E_FAIL);
    simulation.act(inFull(fail + "'SetTimeout'}"), packerNetId);
    EXPECT_EQ(client.setTimeout(1000), E_FAIL);  // before its address is known it is any runtime's
    EXPECT_EQ(client.setTimeout(1000), S_OK);
    EXPECT_EQ(simulation.calls("SetTimeout"), 2);
    EXPECT_EQ(client.connect(), S_OK);
    simulation.act(inFull(fail + "'*'}"), packerNetId);
    act(fail + "'ClearLoggedEvents', 'skip': 1, 'times': 2}");
    EXPECT_TRUE(client.isConnected());
    EXPECT_EQ(clearLog(5), (Results{S_OK, E_FAIL, E_FAIL, S_OK, S_OK}));
    act("[{'do': 'fail', 'call': '*', 'hresult': '0x98110708', 'skip': 2}, " + fail +
        "'ClearLoggedEvents'}]");
    EXPECT_EQ(clearLog(5), (Results{E_FAIL, S_OK, S_OK, protocolError(0x708), S_OK}));
    EXPECT_EQ(simulation.calls("ClearLoggedEvents"), 10);
}

TEST_F(FaultTest, DelaysAndPausesUpToTheTimeout) {
    EXPECT_EQ(client.setTimeout(40), S_OK);
    EXPECT_EQ(client.connect(), S_OK);
    act("{'do': 'delay', 'call': 'ClearLoggedEvents', 'ms': 10}");
    const auto start = Clock::now();
    EXPECT_EQ(clearLog(), S_OK);
    EXPECT_GE(Clock::now() - start, milliseconds(10));
    act("{'do': 'delay', 'call': '*', 'ms': 60000}");
    EXPECT_EQ(clearLog(2), Results(2, timedOut));
    EXPECT_GE(Clock::now() - start, milliseconds(90));
    act("[{'do': 'delay', 'call': '*', 'ms': 0}, {'do': 'pause', 'call': 'ClearLoggedEvents'}]");
    EXPECT_EQ(clearLog(), timedOut);
    act("{'do': 'resume'}");
    EXPECT_EQ(clearLog(), S_OK);
}

TEST_F(FaultTest, PausesCallsBeforeTheyDoAnything) {
    EXPECT_EQ(client.connect(), S_OK);
    act("{'do': 'pause', 'call': 'GetActiveAlarms'}");
    auto alarms = std::async(std::launch::async, [&] { return client.activeAlarms().size(); });
    waitForCalls("GetActiveAlarms", 1);
    EXPECT_EQ(clearLog(), S_OK);  // other calls are not held up
    act("[{'do': 'raise', 'alarm': 'A', #1}, {'do': 'resume'},"
        " {'do': 'pause', 'call': 'GetActiveAlarms'}, {'do': 'pause', 'call': "
        "'ClearLoggedEvents'}]");
    EXPECT_EQ(alarms.get(), 1u);
    auto cleared = std::async(std::launch::async, [&] { return clearLog(); });
    waitForCalls("ClearLoggedEvents", 2);
    ZrSimulatorShutdown();  // ends pauses, too
    EXPECT_EQ(cleared.get(), notConnected);
}

TEST_F(FaultTest, LetsAPausedConnectBeCrossedByAnother) {
    act("{'do': 'pause', 'call': 'Connect'}");
    auto connected = std::async(std::launch::async, [&] { return client.connect(); });
    waitForCalls("Connect", 1);
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(client.connect(packerNetId), S_OK);
    act("{'do': 'resume'}");
    EXPECT_EQ(connected.get(), notConnected);
    EXPECT_EQ(simulation.status(packerNetId).at("connected"), true);
    EXPECT_EQ(simulation.liveObjects(), 0);
}

TEST_F(FaultTest, RefusesWrongAddressesAndForAWhileTheRightOne) {
    for (const auto* netId :
         {"5.10.20.30.1", "5.10.20.30.1.1.", "5.10.20.30.1.256", "5.10..30.1.1", "filler", ""})
        EXPECT_EQ(client.connect(netId), E_INVALIDARG) << netId;
    EXPECT_EQ(client.connect(), S_OK);
    EXPECT_EQ(client.connect("5.10.20.30.1.2"), protocolError(0x007));
    EXPECT_FALSE(client.isConnected());  // it has addressed another
    EXPECT_EQ(clearLog(), notConnected);
    act("{'do': 'refuse', 'hresult': '0x80004005', 'seconds': 0.05}");
    EXPECT_EQ(client.connect(), E_FAIL);
    while (client.connect() == E_FAIL)
        std::this_thread::yield();
    EXPECT_TRUE(client.isConnected());
}

}  // namespace
