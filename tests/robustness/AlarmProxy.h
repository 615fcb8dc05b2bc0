#pragma once

#include "platform/Mutex.h"
#include "robustness/EventProxy.h"

namespace bridge_test {

/// As in the library, one alarm is one object, wherever it is handed out.
class AlarmProxy final : public EventProxy<ZrEventLoggerFnxProxyLib::IZrAlarm,
                                           ZrEventLoggerFnxProxyLib::IZrEventInstance> {
    using IZrAlarm = ZrEventLoggerFnxProxyLib::IZrAlarm;

public:
    /// With a reference for the caller.
    static IZrAlarm* standInFor(const ZrAtlCom::ComPtr<IZrAlarm>& alarm);

    HRESULT STDMETHODCALLTYPE get_ArgumentCount(ULONG* count) override {
        return forward(__func__, &IZrAlarm::get_ArgumentCount, count);
    }
    HRESULT STDMETHODCALLTYPE get_Argument(ULONG index, VARIANT* argument) override {
        return forward(__func__, &IZrAlarm::get_Argument, index, argument);
    }
    HRESULT STDMETHODCALLTYPE get_TimeCleared(FILETIME* time) override {
        return forward(__func__, &IZrAlarm::get_TimeCleared, time);
    }
    HRESULT STDMETHODCALLTYPE get_ConfirmationState(ULONG* state) override {
        return forward(__func__, &IZrAlarm::get_ConfirmationState, state);
    }
    HRESULT STDMETHODCALLTYPE Confirm() override { return forward(__func__, &IZrAlarm::Confirm); }
    HRESULT STDMETHODCALLTYPE get_TimeConfirmed(FILETIME* time) override {
        return forward(__func__, &IZrAlarm::get_TimeConfirmed, time);
    }
    HRESULT STDMETHODCALLTYPE get_InstanceId(ULONG* id) override {
        return forward(__func__, &ZrEventLoggerFnxProxyLib::IZrEventInstance::get_InstanceId, id);
    }

private:
    using EventProxy::EventProxy;
    ULONG dropReference() override;
};

}  // namespace bridge_test
