#pragma once

#include "robustness/EventProxy.h"

namespace bridge_test {

class LoggedEventProxy final : public EventProxy<ZrEventLoggerFnxProxyLib::IZrLoggedEvent,
                                                 ZrEventLoggerFnxProxyLib::IZrLoggedEvent2,
                                                 ZrEventLoggerFnxProxyLib::IZrEventInstance> {
    using IZrLoggedEvent = ZrEventLoggerFnxProxyLib::IZrLoggedEvent;

public:
    static IZrLoggedEvent* standInFor(const ZrAtlCom::ComPtr<IZrLoggedEvent>& event) {
        return new LoggedEventProxy(event);
    }

    HRESULT STDMETHODCALLTYPE
    get_EventType(ZrEventLoggerFnxProxyLib::LoggedEventType* type) override {
        return forward(__func__, &IZrLoggedEvent::get_EventType, type);
    }
    HRESULT STDMETHODCALLTYPE get_RequiresConfirmation(VARIANT_BOOL* requiresIt) override {
        return forward(__func__, &IZrLoggedEvent::get_RequiresConfirmation, requiresIt);
    }
    HRESULT STDMETHODCALLTYPE get_TimeCleared(FILETIME* time) override {
        return forward(__func__, &IZrLoggedEvent::get_TimeCleared, time);
    }
    HRESULT STDMETHODCALLTYPE get_TimeConfirmed(FILETIME* time) override {
        return forward(__func__, &IZrLoggedEvent::get_TimeConfirmed, time);
    }
    HRESULT STDMETHODCALLTYPE get_IsActive(VARIANT_BOOL* active) override {
        return forward(__func__, &ZrEventLoggerFnxProxyLib::IZrLoggedEvent2::get_IsActive, active);
    }
    HRESULT STDMETHODCALLTYPE get_InstanceId(ULONG* id) override {
        return forward(__func__, &ZrEventLoggerFnxProxyLib::IZrEventInstance::get_InstanceId, id);
    }

private:
    using EventProxy::EventProxy;
};

}  // namespace bridge_test
