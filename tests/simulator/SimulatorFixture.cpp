#include "simulator/SimulatorFixture.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include <boost/algorithm/string/replace.hpp>
#include <boost/json/parse.hpp>

#include "target/proxy/CreateInstance.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::ComPtr;

namespace {

const char* const plant = R"({
  'localNetId': '5.10.20.1.1.1',
  'runtimes': {
    '5.10.20.30.1.1': {
      'eventClasses': {'CLASS': {
        'name': {'1033': 'Pump', '1031': 'Pumpe'},
        'events': {
          '7': {'kind': 'alarm', 'severity': 3, 'confirm': true,
                'text': {'1033': 'Pressure {0} of {1}', '1031': 'Druck {0} von {1}'},
                'causeRemedy': [
                  {'id': 'C1', 'cause': {'1033': 'Leak'}, 'remedy': {'1033': 'Seal'}},
                  {'id': 'C2', 'cause': {'1033': 'Valve', '1031': 'Ventil'}}],
                'details': [{'key': 'part', 'text': {'1033': 'P-7'}, 'comment': {'1033': 'left'}}]},
          '8': {'kind': 'alarm', 'severity': 1, 'text': {'1040': 'Livello'}},
          '20': {'kind': 'message'}}}},
      'sources': {'Tank': {'1033': 'Tank', '1031': 'Kessel'}}
    },
    '5.10.20.40.1.1': {}
  }
})";

template <class Call>
ControlAnswer control(Call call) {
    char* text = nullptr;
    const int result = call(&text);
    ControlAnswer answer{result, text ? boost::json::parse(text) : boost::json::value()};
    ZrSimulatorFree(text);
    return answer;
}

}  // namespace

std::string withQuotes(std::string text) {
    boost::replace_all(text, "CLASS", pumpClass);
    boost::replace_all(text, "'", "\"");
    return text;
}

ControlAnswer loadPlant(const std::string& text) {
    return control([&](char** answer) { return ZrSimulatorLoadPlant(text.c_str(), answer); });
}

ControlAnswer apply(const std::string& netId, const std::string& actions) {
    return control(
        [&](char** answer) { return ZrSimulatorApply(netId.c_str(), actions.c_str(), answer); });
}

ControlAnswer status(const std::string& netId) {
    return control([&](char** answer) { return ZrSimulatorStatus(netId.c_str(), answer); });
}

Client::Client() {
    ZrAtlCom::createInstance(CLSID_EventLogger, logger);
}

Client::~Client() {
    unadvise();
}

HRESULT Client::connect(const std::string& netId) {
    ComPtr<IZrConnectionSettings> settings;
    if (const HRESULT hr = ZrAtlCom::createInstance(CLSID_ConnectionSettings, settings); FAILED(hr))
        return hr;
    settings->put_PreloadTranslations(VARIANT_TRUE);
    return logger->ConnectWithSettings(settings.get(), ScopedBstr(netId).get());
}

bool Client::isConnected() {
    VARIANT_BOOL connected = VARIANT_FALSE;
    return SUCCEEDED(logger->get_IsConnected(&connected)) && connected == VARIANT_TRUE;
}

HRESULT Client::advise() {
    ComPtr<IConnectionPoint> point;
    logger.query<IConnectionPointContainer>()->FindConnectionPoint(IID__IZrEventLoggerEvents,
                                                                   point.put());
    return point->Advise(&sink, &cookie);
}

HRESULT Client::unadvise() {
    ComPtr<IConnectionPoint> point;
    logger.query<IConnectionPointContainer>()->FindConnectionPoint(IID__IZrEventLoggerEvents,
                                                                   point.put());
    return point->Unadvise(cookie);
}

HRESULT Client::setTimeout(ULONG milliseconds) {
    return logger.query<IZrLoggerSettings>()->put_Timeout(milliseconds);
}

std::vector<RecordingSink::Alarm> Client::activeAlarms() {
    ComPtr<IZrAlarmCollection> collection;
    EXPECT_EQ(logger->GetActiveAlarms(collection.put()), S_OK);
    ULONG count = 0;
    EXPECT_EQ(collection->get_Count(&count), S_OK);
    std::vector<RecordingSink::Alarm> alarms(count);
    for (ULONG i = 0; i < count; ++i)
        EXPECT_EQ(collection->get_Item(i, alarms[i].put()), S_OK);
    return alarms;
}

SimulatorFixture::SimulatorFixture() {
    const auto answer = loadPlant(withQuotes(plant));
    EXPECT_EQ(answer.result, 200) << answer.body;
}

SimulatorFixture::~SimulatorFixture() {
    ZrSimulatorShutdown();
}

void SimulatorFixture::apply(std::string actions) {
    const auto answer = ::apply(fillerNetId, withQuotes(std::move(actions)));
    EXPECT_EQ(answer.result, 200) << answer.body;
}

boost::json::object SimulatorFixture::status(const std::string& netId) {
    return ::status(netId).body.as_object();
}

std::uint64_t SimulatorFixture::calls(const std::string& operation, const std::string& netId) {
    return status(netId).at("calls").at(operation).to_number<std::uint64_t>();
}

std::int64_t SimulatorFixture::liveObjects(const std::string& netId) {
    return status(netId).at("liveObjects").to_number<std::int64_t>();
}

void SimulatorFixture::waitForCalls(const std::string& operation, std::uint64_t count) {
    while (calls(operation) < count)
        std::this_thread::yield();
}
