#pragma once

#include "robustness/ProxyObject.h"
#include "robustness/SinkProxy.h"

namespace bridge_test {

/// Puts a SinkProxy before each sink that is advised.
class ConnectionPointProxy final : public ProxyObject<IConnectionPoint> {
public:
    static IConnectionPoint* standInFor(const ZrAtlCom::ComPtr<IConnectionPoint>& point) {
        return new ConnectionPointProxy(point);
    }

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override {
        ZrAtlCom::ComPtr<IDispatch> before;
        before.attach(SinkProxy::standInFor(ZrAtlCom::ComPtr<IUnknown>(sink).query<IDispatch>()));
        return forward(__func__, &IConnectionPoint::Advise, before.get(), cookie);
    }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
        return forward(__func__, &IConnectionPoint::Unadvise, cookie);
    }

private:
    using ProxyObject::ProxyObject;
};

}  // namespace bridge_test
