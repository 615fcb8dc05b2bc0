#include "simulator/Client.h"

#include <map>
#include <stdexcept>
#include <thread>

#include <boost/algorithm/string/replace.hpp>

#include "platform/Text.h"
#include "targetsystem/proxy/CreateInstance.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::ComPtr;

namespace {

/// The id of an event, the flag of a removed alarm, or the reason of a change.
std::string textOf(const VARIANT& argument) {
    const auto object = ComPtr<IDispatch>(argument.vt == VT_DISPATCH ? argument.pdispVal : nullptr);
    ULONG id = 0;
    if (const auto alarm = object ? object.query<IZrAlarm>() : nullptr)
        return alarm->get_EventId(&id) == S_OK ? std::to_string(id) : "no id";
    if (const auto message = object ? object.query<IZrMessage>() : nullptr)
        return message->get_EventId(&id) == S_OK ? std::to_string(id) : "no id";
    if (argument.vt == VT_BOOL)
        return argument.boolVal == VARIANT_TRUE ? "removed" : "stays";
    return argument.vt == VT_I4 ? std::to_string(argument.lVal) : "unexpected";
}

}  // namespace

Client::Client() {
    ZrAtlCom::createInstance(CLSID_EventLogger, logger);
    EXPECT_EQ(cookie.advise(logger.get(), this, IID__IZrEventLoggerEvents), S_OK);
}

HRESULT Client::connect(const std::string& netId) {
    return logger->Connect(ScopedBstr(netId).get());
}

bool Client::isConnected() {
    VARIANT_BOOL connected = VARIANT_FALSE;
    return SUCCEEDED(logger->get_IsConnected(&connected)) && connected == VARIANT_TRUE;
}

HRESULT Client::setTimeout(ULONG milliseconds) {
    return logger.query<IZrLoggerSettings>()->put_Timeout(milliseconds);
}

std::vector<Client::Alarm> Client::activeAlarms() {
    ComPtr<IZrAlarmCollection> collection;
    EXPECT_EQ(logger->GetActiveAlarms(collection.put()), S_OK);
    std::vector<Alarm> active;
    Alarm alarm;
    while (collection->get_Item(static_cast<ULONG>(active.size()), alarm.put()) == S_OK)
        active.push_back(alarm);
    return active;
}

std::vector<std::string> Client::waitFor(std::size_t count) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    Lock lock(mutex);
    while (texts.size() < count) {
        if (arrived.wait_until(lock, end) == std::cv_status::timeout)
            throw std::runtime_error("notifications are missing");
    }
    return texts;
}

HRESULT Client::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                       UINT*) {
    static const std::map<DISPID, std::string> names{
        {2, "message"}, {3, "raised"}, {4, "cleared"}, {5, "confirmed"}, {10, "database"}};
    std::string text = names.contains(id) ? names.at(id) : "unexpected";
    for (UINT i = arguments->cArgs; i-- > 0;)  // the last argument is stored first
        text += ' ' + textOf(arguments->rgvarg[i]);
    if (inside)
        inside(text);
    {
        Lock lock(mutex);
        texts.push_back(text);
    }
    arrived.notify_all();
    return S_OK;
}

std::string SimulatorTest::inFull(std::string text) {
    boost::replace_all(text, "#", "'class': 'CLASS', 'event': ");
    boost::replace_all(text, "CLASS", bridge_test::eventClass);
    boost::replace_all(text, "'", "\"");
    return text;
}

void SimulatorTest::waitForCalls(const char* operation, int count) {
    while (simulation.calls(operation) < count)
        std::this_thread::yield();
}
