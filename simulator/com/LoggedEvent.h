#pragma once

#include "simulator/com/EventObject.h"

namespace ZrSimulator {

/// An entry of the log as it was when the log was asked for.
class LoggedEvent final : public EventObject<NoMutex, ZrEventLoggerFnxProxyLib::IZrLoggedEvent,
                                             ZrEventLoggerFnxProxyLib::IZrLoggedEvent2,
                                             ZrEventLoggerFnxProxyLib::IZrEventInstance> {
public:
    LoggedEvent(std::shared_ptr<Border> border, EventRecord record);

    HRESULT STDMETHODCALLTYPE
    get_EventType(ZrEventLoggerFnxProxyLib::LoggedEventType* type) override;
    HRESULT STDMETHODCALLTYPE get_RequiresConfirmation(VARIANT_BOOL* requiresIt) override;
    HRESULT STDMETHODCALLTYPE get_TimeCleared(FILETIME* time) override;
    HRESULT STDMETHODCALLTYPE get_TimeConfirmed(FILETIME* time) override;
    HRESULT STDMETHODCALLTYPE get_IsActive(VARIANT_BOOL* active) override;
    HRESULT STDMETHODCALLTYPE get_InstanceId(ULONG* id) override;
};

}  // namespace ZrSimulator
