#include "robustness/SinkProxy.h"

#include <string>
#include <vector>

#include "robustness/AlarmProxy.h"
#include "robustness/Deliveries.h"
#include "robustness/MessageProxy.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::ComPtr;

namespace bridge_test {

namespace {

constexpr DISPID onMessageSent = 2;
constexpr DISPID onDatabaseChanged = 10;

/// The stand-in of the event that a notification is about, which is its first argument.
ComPtr<IDispatch> standInOf(DISPID id, const VARIANT& event) {
    ComPtr<IDispatch> standIn;
    if (event.vt != VT_DISPATCH)
        return standIn;
    if (id == onMessageSent)
        standIn.attach(MessageProxy::standInFor(ComPtr(static_cast<IZrMessage*>(event.pdispVal))));
    else
        standIn.attach(AlarmProxy::standInFor(ComPtr(static_cast<IZrAlarm*>(event.pdispVal))));
    return standIn;
}

}  // namespace

HRESULT SinkProxy::QueryInterface(REFIID iid, void** object) {
    const bool known =
        iid == IID_IUnknown || iid == IID_IDispatch || iid == IID__IZrEventLoggerEvents;
    *object = known ? static_cast<IDispatch*>(this) : nullptr;
    if (known)
        AddRef();
    return known ? S_OK : E_NOINTERFACE;
}

HRESULT SinkProxy::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*,
                          EXCEPINFO*, UINT*) {
    bool& delivering = Deliveries::onThisThread();
    delivering = true;
    notify(id, *parameters);
    delivering = false;
    return S_OK;
}

void SinkProxy::notify(DISPID id, DISPPARAMS& parameters) {
    std::vector<VARIANT> reversed(parameters.rgvarg, parameters.rgvarg + parameters.cArgs);
    VARIANT& event = reversed.back();
    const bool fence = id == onDatabaseChanged && Deliveries::isFence(event.lVal);
    const auto standIn = standInOf(id, event);
    if (standIn)
        event.pdispVal = standIn.get();
    const auto verdict = fence
                             ? FaultPlan::Verdict::pass
                             : FaultPlan::instance().enter("notification", CallKind::notification);
    if (verdict == FaultPlan::Verdict::swallow)
        return;
    if (verdict == FaultPlan::Verdict::handOutNothing && standIn)
        event.pdispVal = nullptr;

    DISPPARAMS handedOn{reversed.data(), nullptr, parameters.cArgs, 0};
    auto& deliveries = Deliveries::instance();
    try {
        const HRESULT hr =
            real()->Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &handedOn, nullptr, nullptr, nullptr);
        if (hr != S_OK)
            deliveries.complain("notification " + std::to_string(id) + " was refused");
    } catch (...) {
        deliveries.complain("an exception left the sink, from notification " + std::to_string(id));
    }
    if (fence)
        deliveries.fenceDelivered(event.lVal);
}

}  // namespace bridge_test
