#pragma once

#include "robustness/ProxyObject.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

class CauseRemedyProxy final : public ProxyObject<ZrEventLoggerFnxProxyLib::IZrCauseRemedy> {
    using IZrCauseRemedy = ZrEventLoggerFnxProxyLib::IZrCauseRemedy;

public:
    static IZrCauseRemedy* standInFor(const ZrAtlCom::ComPtr<IZrCauseRemedy>& entry) {
        return new CauseRemedyProxy(entry);
    }

    HRESULT STDMETHODCALLTYPE get_Id(BSTR* id) override {
        return forward(__func__, &IZrCauseRemedy::get_Id, id);
    }
    HRESULT STDMETHODCALLTYPE get_Cause(BSTR* cause) override {
        return forward(__func__, &IZrCauseRemedy::get_Cause, cause);
    }
    HRESULT STDMETHODCALLTYPE get_Remedy(BSTR* remedy) override {
        return forward(__func__, &IZrCauseRemedy::get_Remedy, remedy);
    }

private:
    using ProxyObject::ProxyObject;
};

}  // namespace bridge_test
