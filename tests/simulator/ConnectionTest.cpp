#include <thread>

#include "simulator/SimulatorFixture.h"

using namespace ZrEventLoggerFnxProxyLib;

namespace {

class ConnectionTest : public SimulatorFixture {
protected:
    Client client;
};

constexpr HRESULT notConnected = protocolError(0x748);
constexpr HRESULT noSuchTarget = protocolError(0x007);

TEST_F(ConnectionTest, NeedsTheAddressOfARuntime) {
    const struct {
        const char* netId;
        HRESULT result;
    } cases[] = {
        {"5.10.20.30.1.1", S_OK},
        {"5.10.20.30.1.1", S_OK},  // connected already
        {"5.10.20.30.1.2", noSuchTarget},
        {"5.10.20.30.1", E_INVALIDARG},
        {"5.10.20.30.1.1.", E_INVALIDARG},
        {"5.10.20.30.1.256", E_INVALIDARG},
        {"5.10..30.1.1", E_INVALIDARG},
        {"filler", E_INVALIDARG},
        {"", E_INVALIDARG},
    };
    for (const auto& [netId, result] : cases) {
        EXPECT_EQ(client.connect(netId), result) << netId;
        EXPECT_EQ(client.logger->Connect(ScopedBstr(netId).get()), result) << netId;
    }
    EXPECT_EQ(client.logger->Connect(nullptr), E_INVALIDARG);
    EXPECT_EQ(client.logger->ConnectWithSettings(nullptr, ScopedBstr(fillerNetId).get()),
              E_POINTER);
    EXPECT_FALSE(client.isConnected());  // it has addressed another since
}

TEST_F(ConnectionTest, MovesToTheRuntimeAddressedLast) {
    EXPECT_EQ(client.advise(), S_OK);
    for (const char* netId : {fillerNetId, packerNetId}) {
        EXPECT_EQ(client.connect(netId), S_OK);
        for (const char* any : {fillerNetId, packerNetId}) {
            const bool here = any == netId;
            EXPECT_EQ(status(any).at("connected"), here);
            EXPECT_EQ(status(any).at("advised").to_number<int>(), here ? 1 : 0);
            EXPECT_EQ(liveObjects(any), here ? 1 : 0);
        }
    }
    EXPECT_EQ(client.connect("1.1.1.1.1.1"), noSuchTarget);
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(liveObjects(packerNetId), 0);
}

TEST_F(ConnectionTest, IsRefusedUntilAcceptedOrTheTimeIsOver) {
    apply("{'do': 'refuse', 'hresult': '0x98110712'}");
    EXPECT_EQ(client.connect(), protocolError(0x712));
    EXPECT_EQ(client.logger->Connect(ScopedBstr(fillerNetId).get()), protocolError(0x712));
    apply("{'do': 'accept'}");
    EXPECT_EQ(client.connect(), S_OK);
    apply("[{'do': 'drop'}, {'do': 'refuse', 'hresult': '0x80004005', 'seconds': 0.05}]");
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(client.connect(), E_FAIL);
    while (client.connect() == E_FAIL)
        std::this_thread::yield();
    EXPECT_TRUE(client.isConnected());
}

TEST_F(ConnectionTest, IsNeededForEveryQuestion) {
    const auto ask = [&] {
        ZrAtlCom::ComPtr<IZrAlarmCollection> alarms;
        ZrAtlCom::ComPtr<IZrLoggedEventCollection> logged;
        ZrAtlCom::ComPtr<IZrCauseRemedyCollection> causes;
        ZrAtlCom::ComPtr<IZrDetailCollection> details;
        ScopedBstr text;
        auto& logger = *client.logger;
        return std::vector<HRESULT>{
            logger.GetActiveAlarms(alarms.put()),
            logger.GetLoggedEvents(1, logged.put()),
            logger.ClearLoggedEvents(),
            logger.GetEventText(pumpClassId, 8, nullptr, 0, nullptr, 0, 1033, text.put()),
            logger.GetEventClassName(pumpClassId, 1033, text.put()),
            logger.GetSourceName(ScopedBstr("Tank").get(), 1033, text.put()),
            logger.GetCauseRemedy(pumpClassId, 7, 1033, causes.put()),
            logger.GetDetails(pumpClassId, 7, 1033, details.put())};
    };
    EXPECT_EQ(ask(), std::vector<HRESULT>(8, notConnected));
    EXPECT_EQ(client.connect(), S_OK);
    EXPECT_EQ(ask(), std::vector<HRESULT>(8, S_OK));
    EXPECT_EQ(client.logger->Disconnect(), S_OK);
    EXPECT_EQ(ask(), std::vector<HRESULT>(8, notConnected));
    EXPECT_EQ(client.logger->Disconnect(), S_OK);
}

TEST_F(ConnectionTest, EndsWithThePlant) {
    EXPECT_EQ(client.advise(), S_OK);
    EXPECT_EQ(client.connect(), S_OK);
    apply("{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7}");
    client.sink.waitFor(1);
    const auto alarm = client.sink.alarms()[0];

    EXPECT_EQ(loadPlant(withQuotes("{'runtimes': {'5.10.20.30.1.1': {}}}")).result, 200);
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(alarm->Confirm(), notConnected);
    EXPECT_EQ(client.connect(), S_OK);
    EXPECT_TRUE(client.activeAlarms().empty());
    EXPECT_EQ(liveObjects(), 1);  // the alarm is not one of the new runtime

    ZrSimulatorShutdown();
    ULONG id = 0;
    EXPECT_EQ(alarm->get_EventId(&id), S_OK);
    EXPECT_EQ(id, 7u);
    EXPECT_FALSE(client.isConnected());
    EXPECT_EQ(client.connect(), noSuchTarget);
}

TEST_F(ConnectionTest, TellsWhetherTheClientPreloadsTexts) {
    EXPECT_EQ(client.logger->Connect(ScopedBstr(fillerNetId).get()), S_OK);
    EXPECT_EQ(status().at("preloadTranslations"), false);
    client.logger->Disconnect();
    EXPECT_EQ(client.connect(), S_OK);
    EXPECT_EQ(status().at("preloadTranslations"), true);
}

}  // namespace
