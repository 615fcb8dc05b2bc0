#pragma once

#include "robustness/ProxyObject.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

class DetailProxy final : public ProxyObject<ZrEventLoggerFnxProxyLib::IZrDetail> {
    using IZrDetail = ZrEventLoggerFnxProxyLib::IZrDetail;

public:
    static IZrDetail* standInFor(const ZrAtlCom::ComPtr<IZrDetail>& detail) {
        return new DetailProxy(detail);
    }

    HRESULT STDMETHODCALLTYPE get_Key(BSTR* key) override {
        return forward(__func__, &IZrDetail::get_Key, key);
    }
    HRESULT STDMETHODCALLTYPE get_Text(BSTR* text) override {
        return forward(__func__, &IZrDetail::get_Text, text);
    }
    HRESULT STDMETHODCALLTYPE get_Comment(BSTR* comment) override {
        return forward(__func__, &IZrDetail::get_Comment, comment);
    }

private:
    using ProxyObject::ProxyObject;
};

}  // namespace bridge_test
