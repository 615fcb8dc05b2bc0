#pragma once

#include "robustness/ProxyObject.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

class LoggerProxy final
    : public ProxyObject<ZrEventLoggerFnxProxyLib::IZrEventLogger4,
                         ZrEventLoggerFnxProxyLib::IZrLoggerSettings, IConnectionPointContainer> {
    using IZrEventLogger4 = ZrEventLoggerFnxProxyLib::IZrEventLogger4;
    using IZrLoggerSettings = ZrEventLoggerFnxProxyLib::IZrLoggerSettings;

public:
    static IZrEventLogger4* standInFor(const ZrAtlCom::ComPtr<IZrEventLogger4>& logger) {
        return new LoggerProxy(logger);
    }

    HRESULT STDMETHODCALLTYPE Connect(BSTR netId) override {
        return forward(__func__, &IZrEventLogger4::Connect, netId);
    }
    HRESULT STDMETHODCALLTYPE Disconnect() override {
        return forward(__func__, &IZrEventLogger4::Disconnect);
    }
    HRESULT STDMETHODCALLTYPE get_IsConnected(VARIANT_BOOL* connected) override {
        return forward(__func__, &IZrEventLogger4::get_IsConnected, connected);
    }
    HRESULT STDMETHODCALLTYPE
    GetActiveAlarms(ZrEventLoggerFnxProxyLib::IZrAlarmCollection** alarms) override;
    HRESULT STDMETHODCALLTYPE ClearLoggedEvents() override {
        return forward(__func__, &IZrEventLogger4::ClearLoggedEvents);
    }
    HRESULT STDMETHODCALLTYPE GetLoggedEvents(
        ULONG count, ZrEventLoggerFnxProxyLib::IZrLoggedEventCollection** events) override;
    HRESULT STDMETHODCALLTYPE GetEventText(REFGUID eventClass, ULONG eventId, const BYTE* types,
                                           ULONG typesSize, const BYTE* data, ULONG dataSize,
                                           LCID lcid, BSTR* text) override {
        return forward(__func__, &IZrEventLogger4::GetEventText, eventClass, eventId, types,
                       typesSize, data, dataSize, lcid, text);
    }
    HRESULT STDMETHODCALLTYPE GetEventClassName(REFGUID eventClass, LCID lcid,
                                                BSTR* name) override {
        return forward(__func__, &IZrEventLogger4::GetEventClassName, eventClass, lcid, name);
    }
    HRESULT STDMETHODCALLTYPE GetSourceName(BSTR source, LCID lcid, BSTR* name) override {
        return forward(__func__, &IZrEventLogger4::GetSourceName, source, lcid, name);
    }
    HRESULT STDMETHODCALLTYPE
    GetCauseRemedy(REFGUID eventClass, ULONG eventId, LCID lcid,
                   ZrEventLoggerFnxProxyLib::IZrCauseRemedyCollection** entries) override;
    HRESULT STDMETHODCALLTYPE
    GetDetails(REFGUID eventClass, ULONG eventId, LCID lcid,
               ZrEventLoggerFnxProxyLib::IZrDetailCollection** details) override;
    HRESULT STDMETHODCALLTYPE ConnectWithSettings(
        ZrEventLoggerFnxProxyLib::IZrConnectionSettings* settings, BSTR netId) override;

    HRESULT STDMETHODCALLTYPE get_Timeout(ULONG* milliseconds) override {
        return forward(__func__, &IZrLoggerSettings::get_Timeout, milliseconds);
    }
    HRESULT STDMETHODCALLTYPE put_Timeout(ULONG milliseconds) override {
        return forward(__func__, &IZrLoggerSettings::put_Timeout, milliseconds);
    }

    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

private:
    using ProxyObject::ProxyObject;
};

}  // namespace bridge_test
