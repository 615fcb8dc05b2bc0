#pragma once

#include "robustness/ProxyObject.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

/// What the stand-ins of alarms, messages and logged events have in common.
template <class Event, class... Others>
class EventProxy : public ProxyObject<Event, ZrEventLoggerFnxProxyLib::IZrJsonAttribute,
                                      ZrEventLoggerFnxProxyLib::IZrEventArguments, Others...> {
    using Base = ProxyObject<Event, ZrEventLoggerFnxProxyLib::IZrJsonAttribute,
                             ZrEventLoggerFnxProxyLib::IZrEventArguments, Others...>;
    using IZrEvent = ZrEventLoggerFnxProxyLib::IZrEvent;
    using IZrJsonAttribute = ZrEventLoggerFnxProxyLib::IZrJsonAttribute;
    using IZrEventArguments = ZrEventLoggerFnxProxyLib::IZrEventArguments;
    using SourceAttribute = ZrEventLoggerFnxProxyLib::SourceAttribute;

public:
    HRESULT STDMETHODCALLTYPE get_EventClass(GUID* eventClass) final {
        return this->forward(__func__, &IZrEvent::get_EventClass, eventClass);
    }
    HRESULT STDMETHODCALLTYPE get_EventId(ULONG* id) final {
        return this->forward(__func__, &IZrEvent::get_EventId, id);
    }
    HRESULT STDMETHODCALLTYPE get_Severity(ULONG* severity) final {
        return this->forward(__func__, &IZrEvent::get_Severity, severity);
    }
    HRESULT STDMETHODCALLTYPE HasSource(SourceAttribute kind, VARIANT_BOOL* has) final {
        return this->forward(__func__, &IZrEvent::HasSource, kind, has);
    }
    HRESULT STDMETHODCALLTYPE get_SourceId(ULONG* id) final {
        return this->forward(__func__, &IZrEvent::get_SourceId, id);
    }
    HRESULT STDMETHODCALLTYPE get_SourceGuid(GUID* guid) final {
        return this->forward(__func__, &IZrEvent::get_SourceGuid, guid);
    }
    HRESULT STDMETHODCALLTYPE get_SourceName(BSTR* name) final {
        return this->forward(__func__, &IZrEvent::get_SourceName, name);
    }
    HRESULT STDMETHODCALLTYPE get_TimeRaised(FILETIME* time) final {
        return this->forward(__func__, &IZrEvent::get_TimeRaised, time);
    }
    HRESULT STDMETHODCALLTYPE get_JsonAttribute(BSTR* json) final {
        return this->forward(__func__, &IZrJsonAttribute::get_JsonAttribute, json);
    }
    HRESULT STDMETHODCALLTYPE
    GetLayout(ZrEventLoggerFnxProxyLib::ArgumentBlockLayout* layout) final {
        return this->forward(__func__, &IZrEventArguments::GetLayout, layout);
    }
    HRESULT STDMETHODCALLTYPE GetBlock(BYTE* buffer, ULONG size) final {
        return this->forward(__func__, &IZrEventArguments::GetBlock, buffer, size);
    }

protected:
    using Base::Base;
};

}  // namespace bridge_test
