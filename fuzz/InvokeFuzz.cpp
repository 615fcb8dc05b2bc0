/// Notifications with arguments of any number, name and type: a target system's sink takes no value
/// for what it is not.
#include <atomic>
#include <cstdlib>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "targetsystem/TargetSystemPlatformSpecific.h"
#include "tests/events/FakeEvent.h"
#include "tests/events/RecordingLogging.h"

namespace {

using namespace bridge_test;
using ZrHmiEventLogger::TargetSystem;

VARIANTARG argument(FuzzedDataProvider& input, IDispatch* object) {
    constexpr VARTYPE usual[] = {VT_DISPATCH, VT_BOOL, VT_I4};
    VARIANTARG value;
    VariantInit(&value);
    value.vt = input.ConsumeBool() ? input.PickValueInArray(usual)
                                   : input.ConsumeIntegral<VARTYPE>();
    if (value.vt == VT_DISPATCH)
        value.pdispVal = input.ConsumeBool() ? object : nullptr;
    else
        value.llVal = input.ConsumeIntegral<LONGLONG>();
    return value;
}

void notify(TargetSystem& target, FuzzedDataProvider& input, FakeEvent& event) {
    const DISPID id = input.ConsumeIntegralInRange<DISPID>(0, 12);
    IDispatch* const object = id == 2 ? static_cast<IDispatch*>(static_cast<fnx::IZrMessage*>(&event))
                                      : static_cast<fnx::IZrAlarm*>(&event);
    std::vector<VARIANTARG> values(input.ConsumeIntegralInRange<std::size_t>(0, 10));
    for (VARIANTARG& value : values)
        value = argument(input, object);
    std::vector<DISPID> names(input.ConsumeIntegralInRange<std::size_t>(0, 10));
    for (DISPID& name : names)
        name = input.ConsumeBool() ? input.ConsumeIntegralInRange<DISPID>(-1, 8)
                                   : input.ConsumeIntegral<DISPID>();
    DISPPARAMS parameters{input.ConsumeProbability<float>() < 0.05F ? nullptr : values.data(),
                          names.data(), static_cast<UINT>(values.size()),
                          static_cast<UINT>(names.size())};
    VARIANT result;
    const HRESULT hr =
        target.Invoke(id, IID_NULL, 0, DISPATCH_METHOD, &parameters, &result, nullptr, nullptr);
    if (hr != S_OK && hr != E_INVALIDARG && hr != E_FAIL && hr != DISP_E_TYPEMISMATCH)
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    FuzzedDataProvider input(bytes, size);
    FakeBorder border;
    FakeEvent event(border);
    RecordingLogging host;
    const std::atomic<bool> stopping = false;
    std::atomic<std::int32_t> ids = 1;
    ZrHmiEventLogger::LocalAddress localAddress;
    const auto target = ZrHmiEventLogger::TargetSystemPlatformSpecific<TargetSystem>::make(
        ZrHmiEventLogger::TargetSystemSettings{"Filler", "1.2.3.4.5.6", true,
                                               ZrHmiSrv::Timespan::from_milliseconds(1), 3},
        "Domain", localAddress, host, stopping, ids);
    while (input.remaining_bytes() > 0)
        notify(*target, input, event);
    return 0;
}
