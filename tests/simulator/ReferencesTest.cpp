#include "simulator/SimulatorFixture.h"
#include "target/proxy/CreateInstance.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::ComPtr;

namespace {

class ReferencesTest : public SimulatorFixture {};

/// Every interface answers for every other, for its identity, and for nothing else.
template <class... Interfaces>
void expectOneObject(IUnknown* object) {
    const auto identity = ComPtr<IUnknown>(object).query<IUnknown>();
    ASSERT_TRUE(identity);
    const std::vector<ComPtr<IUnknown>> faces{
        ComPtr<IUnknown>(identity.template query<Interfaces>())...};
    for (const auto& face : faces) {
        ASSERT_TRUE(face);
        EXPECT_EQ(face.query<IUnknown>(), identity);
        EXPECT_TRUE((face.template query<Interfaces>() && ...));
        void* none = &none;
        EXPECT_EQ(face->QueryInterface(IID_NULL, &none), E_NOINTERFACE);
        EXPECT_EQ(none, nullptr);
        EXPECT_EQ(face->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    }
}

TEST_F(ReferencesTest, AreCountedUntilTheyAreReleased) {
    EXPECT_EQ(liveObjects(), 0);
    {
        Client client;
        EXPECT_EQ(liveObjects(), 1);  // of every runtime, for want of an address
        EXPECT_EQ(liveObjects(packerNetId), 1);
        EXPECT_EQ(client.advise(), S_OK);
        EXPECT_EQ(client.connect(), S_OK);
        EXPECT_EQ(liveObjects(), 1);
        EXPECT_EQ(liveObjects(packerNetId), 0);

        apply(
            "[{'do': 'hold'}, {'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7,"
            " 'count': 3}, {'do': 'message', 'class': 'CLASS', 'event': 20}]");
        EXPECT_EQ(liveObjects(), 1);  // what the library itself holds does not count
        apply("{'do': 'release'}");
        client.sink.waitFor(4);
        EXPECT_EQ(liveObjects(), 1 + 3);
        {
            const auto alarms = client.activeAlarms();
            EXPECT_EQ(liveObjects(), 1 + 3 + 3);
            ComPtr<IZrLoggedEventCollection> logged;
            EXPECT_EQ(client.logger->GetLoggedEvents(10, logged.put()), S_OK);
            EXPECT_EQ(liveObjects(), 1 + 3 + 3 + 1);
        }
        EXPECT_EQ(liveObjects(), 1 + 3);
        client.sink.forget();
        EXPECT_EQ(status().at("advised").to_number<int>(), 1);
        ComPtr<IZrConnectionSettings> settings;
        EXPECT_EQ(ZrAtlCom::createInstance(CLSID_ConnectionSettings, settings), S_OK);
        EXPECT_EQ(liveObjects(packerNetId), 1);
    }
    EXPECT_EQ(liveObjects(), 0);
    EXPECT_EQ(liveObjects(packerNetId), 0);
    EXPECT_EQ(status().at("connected"), false);
    EXPECT_EQ(status().at("advised").to_number<int>(), 0);
}

TEST_F(ReferencesTest, KeepToTheRulesOfQueryInterface) {
    Client client;
    EXPECT_EQ(client.advise(), S_OK);
    EXPECT_EQ(client.connect(), S_OK);
    expectOneObject<IDispatch, IZrEventLogger4, IZrLoggerSettings, IConnectionPointContainer>(
        client.logger.get());

    apply(
        "[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7, 'json': ''},"
        " {'do': 'raise', 'alarm': 'B', 'class': 'CLASS', 'event': 7}]");
    client.sink.waitFor(2);
    const auto alarms = client.sink.alarms();
    expectOneObject<IDispatch, IZrAlarm, IZrJsonAttribute, IZrEventArguments, IZrEventInstance>(
        alarms[0].get());
    expectOneObject<IDispatch, IZrAlarm, IZrEventArguments, IZrEventInstance>(alarms[1].get());
    EXPECT_FALSE(alarms[1].query<IZrJsonAttribute>());
    EXPECT_FALSE(alarms[0].query<IZrMessage>());

    ComPtr<IZrLoggedEventCollection> logged;
    EXPECT_EQ(client.logger->GetLoggedEvents(10, logged.put()), S_OK);
    expectOneObject<IDispatch, IZrLoggedEventCollection>(logged.get());
    ComPtr<IZrLoggedEvent> entry;
    EXPECT_EQ(logged->get_Item(0, entry.put()), S_OK);
    expectOneObject<IDispatch, IZrLoggedEvent, IZrLoggedEvent2, IZrJsonAttribute, IZrEventArguments,
                    IZrEventInstance>(entry.get());

    ComPtr<IConnectionPoint> point;
    const auto container = client.logger.query<IConnectionPointContainer>();
    EXPECT_EQ(container->FindConnectionPoint(IID_IDispatch, point.put()), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(container->FindConnectionPoint(IID__IZrEventLoggerEvents, point.put()), S_OK);
    expectOneObject<IConnectionPoint>(point.get());
    ComPtr<IConnectionPointContainer> owner;
    EXPECT_EQ(point->GetConnectionPointContainer(owner.put()), S_OK);
    EXPECT_EQ(owner, container);
    DWORD cookie = 0;
    EXPECT_EQ(point->Advise(alarms[0].get(), &cookie), CONNECT_E_CANNOTCONNECT);  // not a sink

    void* unknown = nullptr;
    EXPECT_EQ(CreateInstance(GUID{}, IID_IUnknown, &unknown), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(CreateInstance(CLSID_EventLogger, IID_NULL, &unknown), E_NOINTERFACE);
    ScopedBstr text;
    EXPECT_EQ(ZrEventLoggerFnxProxyLibErrorMessage(E_FAIL, text.put()), E_NOTIMPL);
}

}  // namespace
