#pragma once

#include "targetsystem/proxy/ComPtr.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrAtlCom {

/// Creates an object of the proxy library. A success that yields no object is E_NOINTERFACE, so
/// that `object` is filled whenever the result is not negative.
template <class Interface>
HRESULT createInstance(REFCLSID classId, ComPtr<Interface>& object) {
    void* created = nullptr;
    const HRESULT hr = ZrEventLoggerFnxProxyLib::CreateInstance(
        classId, InterfaceId<Interface>::value(), &created);
    if (FAILED(hr))
        return hr;
    object.attach(static_cast<Interface*>(created));
    return object ? hr : E_NOINTERFACE;
}

}  // namespace ZrAtlCom
