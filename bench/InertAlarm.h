#pragma once

#include "tests/events/FakeEvent.h"

/// A proxy alarm that counts its references and does nothing else.
class InertAlarm final : public bridge_test::FakeDispatch<ZrEventLoggerFnxProxyLib::IZrAlarm> {
public:
    ULONG references = 0;

    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE get_EventClass(GUID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_EventId(ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Severity(ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE HasSource(ZrEventLoggerFnxProxyLib::SourceAttribute,
                                        VARIANT_BOOL*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE get_SourceId(ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_SourceGuid(GUID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_SourceName(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_TimeRaised(FILETIME*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ArgumentCount(ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Argument(ULONG, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_TimeCleared(FILETIME*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ConfirmationState(ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Confirm() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_TimeConfirmed(FILETIME*) override { return E_NOTIMPL; }
};
