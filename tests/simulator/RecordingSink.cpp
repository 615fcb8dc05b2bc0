#include "simulator/RecordingSink.h"

#include <stdexcept>
#include <utility>

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::ComPtr;

namespace {

constexpr auto patience = std::chrono::seconds(20);

/// The id of an event, which has to have this interface; a text when it does not.
template <class Interface>
std::string idOf(const VARIANT& argument) {
    const auto event = argument.vt == VT_DISPATCH
                           ? ComPtr<IDispatch>(argument.pdispVal).query<Interface>()
                           : ComPtr<Interface>();
    ULONG id = 0;
    if (!event || FAILED(event->get_EventId(&id)))
        return "(not an event)";
    return std::to_string(id);
}

std::string removedFlag(const VARIANT& argument) {
    if (argument.vt != VT_BOOL)
        return " (no flag)";
    return argument.boolVal == VARIANT_TRUE ? " removed" : "";
}

std::string textOf(DISPID id, const DISPPARAMS& parameters) {
    const VARIANT* last = parameters.rgvarg;
    if (id == 2 && parameters.cArgs == 1)
        return "message " + idOf<IZrMessage>(last[0]);
    if (id == 3 && parameters.cArgs == 1)
        return "raised " + idOf<IZrAlarm>(last[0]);
    if (id == 4 && parameters.cArgs == 2)
        return "cleared " + idOf<IZrAlarm>(last[1]) + removedFlag(last[0]);
    if (id == 5 && parameters.cArgs == 2)
        return "confirmed " + idOf<IZrAlarm>(last[1]) + removedFlag(last[0]);
    if (id == 10 && parameters.cArgs == 1 && last[0].vt == VT_I4)
        return "database " + std::to_string(last[0].lVal);
    return "unexpected " + std::to_string(id);
}

}  // namespace

std::vector<std::string> RecordingSink::waitFor(std::size_t count) {
    const auto end = std::chrono::steady_clock::now() + patience;
    Lock lock(mutex);
    while (texts.size() < count) {
        if (arrived.wait_until(lock, end) == std::cv_status::timeout)
            throw std::runtime_error("notifications are missing");
    }
    return texts;
}

std::vector<std::string> RecordingSink::received() {
    return waitFor(0);
}

std::vector<RecordingSink::Alarm> RecordingSink::alarms() {
    Lock lock(mutex);
    return subjects;
}

std::thread::id RecordingSink::thread() {
    Lock lock(mutex);
    return lastThread;
}

void RecordingSink::forget() {
    Lock lock(mutex);
    texts.clear();
    subjects.clear();
}

HRESULT RecordingSink::QueryInterface(REFIID iid, void** object) {
    const bool known =
        iid == IID_IUnknown || iid == IID_IDispatch || iid == IID__IZrEventLoggerEvents;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

HRESULT RecordingSink::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                              EXCEPINFO*, UINT*) {
    const std::string text = textOf(id, *parameters);
    const VARIANT& subject = parameters->rgvarg[parameters->cArgs - 1];
    Alarm alarm;
    if (subject.vt == VT_DISPATCH)
        alarm = ComPtr<IDispatch>(subject.pdispVal).query<IZrAlarm>();
    if (inside)
        inside(text);
    record(text, std::move(alarm));
    return S_OK;
}

void RecordingSink::record(const std::string& text, Alarm alarm) {
    {
        Lock lock(mutex);
        texts.push_back(text);
        if (alarm)
            subjects.push_back(std::move(alarm));
        lastThread = std::this_thread::get_id();
    }
    arrived.notify_all();
}
