#include <future>

#include "simulator/SimulatorFixture.h"
#include "target/proxy/CreateInstance.h"

using namespace ZrEventLoggerFnxProxyLib;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

namespace {

class FaultTest : public SimulatorFixture {
protected:
    HRESULT connectPlain() { return client.logger->Connect(ScopedBstr(fillerNetId).get()); }
    HRESULT clearLog() { return client.logger->ClearLoggedEvents(); }
    std::vector<HRESULT> clearLog(int times) {
        std::vector<HRESULT> results;
        for (int i = 0; i < times; ++i)
            results.push_back(clearLog());
        return results;
    }

    Client client;
};

constexpr HRESULT timedOut = protocolError(0x745);
constexpr HRESULT notConnected = protocolError(0x748);
using Results = std::vector<HRESULT>;

TEST_F(FaultTest, FailsTheCallsThatItNames) {
    EXPECT_EQ(connectPlain(), S_OK);
    apply(
        "{'do': 'fail', 'call': 'ClearLoggedEvents', 'hresult': '0x80004005', 'skip': 1,"
        " 'times': 2}");
    EXPECT_TRUE(client.isConnected());
    EXPECT_EQ(clearLog(5), (Results{S_OK, E_FAIL, E_FAIL, S_OK, S_OK}));

    apply(
        "[{'do': 'fail', 'call': '*', 'hresult': '0x98110708', 'skip': 2},"
        " {'do': 'fail', 'call': 'ClearLoggedEvents', 'hresult': '0x80004005'}]");
    EXPECT_EQ(clearLog(5), (Results{E_FAIL, S_OK, S_OK, protocolError(0x708), S_OK}));
    EXPECT_EQ(calls("ClearLoggedEvents"), 10u);
}

TEST_F(FaultTest, OfCallsBeforeTheAddressIsKnownIsThatOfAnyRuntime) {
    const auto fail = [&](const char* netId, const std::string& operation) {
        const auto action = "{'do': 'fail', 'call': '" + operation + "', 'hresult': '0x80004001'}";
        EXPECT_EQ(::apply(netId, withQuotes(action)).result, 200);
    };
    fail(fillerNetId, "CreateInstance");
    Client::Logger none;
    EXPECT_EQ(ZrAtlCom::createInstance(CLSID_EventLogger, none), E_NOTIMPL);
    fail(packerNetId, "SetTimeout");
    EXPECT_EQ(client.setTimeout(100), E_NOTIMPL);
    EXPECT_EQ(client.setTimeout(100), S_OK);
    fail(packerNetId, "Advise");
    EXPECT_EQ(client.advise(), E_NOTIMPL);
    EXPECT_EQ(calls("SetTimeout"), 2u);
    EXPECT_EQ(calls("SetTimeout", packerNetId), 2u);

    EXPECT_EQ(connectPlain(), S_OK);
    fail(packerNetId, "Advise");
    EXPECT_EQ(client.advise(), S_OK);  // the packer is another runtime's affair now
    EXPECT_EQ(calls("Advise"), 2u);
    EXPECT_EQ(calls("Advise", packerNetId), 1u);
    EXPECT_EQ(client.unadvise(), S_OK);
}

TEST_F(FaultTest, ReachesEveryProperty) {
    EXPECT_EQ(client.advise(), S_OK);
    EXPECT_EQ(connectPlain(), S_OK);
    apply("{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7, 'json': '{}'}");
    client.sink.waitFor(1);
    const auto alarm = client.sink.alarms()[0];
    const auto arguments = alarm.query<IZrEventArguments>();
    const auto json = alarm.query<IZrJsonAttribute>();
    apply("{'do': 'fail', 'call': '*', 'hresult': '0x80004005', 'times': 17}");
    GUID guid{};
    ULONG number = 0;
    VARIANT_BOOL flag = VARIANT_FALSE;
    FILETIME time{};
    VARIANT argument;
    ArgumentBlockLayout layout{};
    BYTE block[1];
    ScopedBstr text;
    for (const HRESULT hr :
         {alarm->get_EventClass(&guid), alarm->get_EventId(&number), alarm->get_Severity(&number),
          alarm->HasSource(SourceAttribute::id, &flag), alarm->get_SourceId(&number),
          alarm->get_SourceGuid(&guid), alarm->get_SourceName(text.put()),
          alarm->get_TimeRaised(&time), alarm->get_TimeCleared(&time),
          alarm->get_TimeConfirmed(&time), alarm->get_ConfirmationState(&number),
          alarm->get_ArgumentCount(&number), alarm->get_Argument(0, &argument),
          arguments->GetLayout(&layout), arguments->GetBlock(block, sizeof(block)),
          json->get_JsonAttribute(text.put()), alarm->Confirm()})
        EXPECT_EQ(hr, E_FAIL);
    EXPECT_EQ(alarm->get_EventId(&number), S_OK);
    const auto counted = status().at("calls").as_object();
    for (const char* operation : {"EventClass", "Severity", "HasSource", "SourceId", "SourceGuid",
                                  "SourceName", "TimeRaised", "TimeCleared", "TimeConfirmed",
                                  "ConfirmationState", "JsonAttribute", "Confirm"})
        EXPECT_EQ(counted.at(operation).to_number<int>(), 1) << operation;
    EXPECT_EQ(counted.at("Arguments").to_number<int>(), 4);
    EXPECT_EQ(counted.at("EventId").to_number<int>(), 3);  // the sink has asked, too
}

TEST_F(FaultTest, DelaysUpToTheTimeout) {
    EXPECT_EQ(client.setTimeout(40), S_OK);
    EXPECT_EQ(connectPlain(), S_OK);
    apply("{'do': 'delay', 'call': 'ClearLoggedEvents', 'ms': 10}");
    const auto start = Clock::now();
    EXPECT_EQ(clearLog(), S_OK);
    EXPECT_GE(Clock::now() - start, milliseconds(10));
    apply("{'do': 'delay', 'call': '*', 'ms': 60000}");
    EXPECT_EQ(clearLog(2), Results(2, timedOut));
    EXPECT_GE(Clock::now() - start, milliseconds(90));
    apply("{'do': 'delay', 'call': '*', 'ms': 0}");
    EXPECT_EQ(clearLog(), S_OK);
}

TEST_F(FaultTest, PausesCallsBeforeTheyDoAnything) {
    EXPECT_EQ(connectPlain(), S_OK);
    apply("{'do': 'pause', 'call': 'GetActiveAlarms'}");
    auto alarms = std::async(std::launch::async, [&] { return client.activeAlarms().size(); });
    waitForCalls("GetActiveAlarms", 1);
    EXPECT_EQ(clearLog(), S_OK);  // other calls are not held up
    apply("{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7}");
    apply("[{'do': 'resume'}, {'do': 'pause', 'call': 'GetActiveAlarms'}]");
    EXPECT_EQ(alarms.get(), 1u);

    EXPECT_EQ(client.setTimeout(20), S_OK);
    ZrAtlCom::ComPtr<IZrAlarmCollection> none;
    EXPECT_EQ(client.logger->GetActiveAlarms(none.put()), timedOut);
    apply("{'do': 'resume'}");
    EXPECT_EQ(client.logger->GetActiveAlarms(none.put()), S_OK);
}

TEST_F(FaultTest, LetsAPausedConnectBeCrossedByOthers) {
    apply("{'do': 'pause', 'call': 'Connect'}");
    auto connected = std::async(std::launch::async, [&] { return connectPlain(); });
    waitForCalls("Connect", 1);
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(client.logger->Disconnect(), S_OK);
    apply("[{'do': 'refuse', 'hresult': '0x98110712'}, {'do': 'resume'}]");
    EXPECT_EQ(connected.get(), protocolError(0x712));

    apply("[{'do': 'accept'}, {'do': 'pause', 'call': 'Connect'}]");
    connected = std::async(std::launch::async, [&] { return connectPlain(); });
    waitForCalls("Connect", 2);
    EXPECT_EQ(client.connect(packerNetId), S_OK);
    apply("{'do': 'resume'}");
    EXPECT_EQ(connected.get(), notConnected);
    EXPECT_EQ(status(packerNetId).at("connected"), true);
}

TEST_F(FaultTest, EndsWithThePlant) {
    EXPECT_EQ(connectPlain(), S_OK);
    apply("{'do': 'pause', 'call': '*'}");
    auto cleared = std::async(std::launch::async, [&] { return clearLog(); });
    waitForCalls("ClearLoggedEvents", 1);
    ZrSimulatorShutdown();
    EXPECT_EQ(cleared.get(), notConnected);
    EXPECT_FALSE(client.isConnected());
}

}  // namespace
