#pragma once

#include "robustness/ProxyObject.h"

namespace bridge_test {

/// Receives the library's notifications in the place of a sink of the extension and hands them
/// on, with the stand-ins of the events that they are about.
class SinkProxy final : public ProxyObject<IDispatch> {
public:
    static IDispatch* standInFor(const ZrAtlCom::ComPtr<IDispatch>& sink) {
        return new SinkProxy(sink);
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE Release() override { return letGo(); }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID lcid, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentError) override;

private:
    using ProxyObject::ProxyObject;
    void notify(DISPID id, DISPPARAMS& parameters);
};

}  // namespace bridge_test
