#pragma once

#include "targetsystem/proxy/IDispEventLocator.h"
#include "targetsystem/proxy/SinkEntry.h"
#include "targetsystem/proxy/SinkMember.h"

namespace ZrAtlCom {

/// Receives the dispatch-only events `*eventsId` and hands them to members of the derived class
/// T, which lists them in a `static SinkTable sinkTable()`. Lifetime is T's own affair: the
/// reference count does not delete. Any thread, as the source chooses.
template <UINT controlId, class T, const IID* eventsId>
class IDispEventSimpleImpl : public IDispEventLocator {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (!object)
            return E_POINTER;
        const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == *eventsId;
        *object = known ? static_cast<IDispatch*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }

    /// S_OK, and nothing is called, for events that T does not list.
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID lcid, WORD, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO*, UINT*) override {
        const SinkEntry* found = findSinkEntry(T::sinkTable(), controlId, *eventsId, id);
        if (!found)
            return S_OK;
        CallDescription call{};
        if (found->call)
            call = *found->call;
        else if (FAILED(GetFuncInfoFromId(*eventsId, id, lcid, call)))
            return S_OK;
        const HRESULT hr = callSinkMember(this, *found, call, arguments, result);
        if (FAILED(hr))
            refused(hr);
        return hr;
    }

    HRESULT STDMETHODCALLTYPE GetFuncInfoFromId(REFIID, DISPID, LCID, CallDescription&) override {
        return E_NOTIMPL;
    }

protected:
    virtual ~IDispEventSimpleImpl() = default;

    /// A listed event was lost: its arguments do not fit, and no member was called.
    virtual void refused(HRESULT) noexcept {}

    /// A table entry: `entry<&T::onAlarmRaised, alarmCall>(3)`.
    template <auto member, const CallDescription& call>
    static SinkEntry entry(DISPID id) {
        static_assert(SinkMember<member>::type::isCalledBy(call));
        return {controlId, eventsId, id, address<member>(), &call};
    }
    /// An entry whose call GetFuncInfoFromId describes.
    template <auto member>
    static SinkEntry entry(DISPID id) {
        return {controlId, eventsId, id, address<member>(), nullptr};
    }

private:
    template <auto member>
    static ULONG_PTR address() {
        return reinterpret_cast<ULONG_PTR>(&SinkMember<member>::type::call);
    }
};

}  // namespace ZrAtlCom
