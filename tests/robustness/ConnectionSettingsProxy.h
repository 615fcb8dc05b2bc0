#pragma once

#include "robustness/ProxyObject.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace bridge_test {

class ConnectionSettingsProxy final
    : public ProxyObject<ZrEventLoggerFnxProxyLib::IZrConnectionSettings> {
    using IZrConnectionSettings = ZrEventLoggerFnxProxyLib::IZrConnectionSettings;

public:
    static IZrConnectionSettings* standInFor(
        const ZrAtlCom::ComPtr<IZrConnectionSettings>& settings) {
        return new ConnectionSettingsProxy(settings);
    }

    HRESULT STDMETHODCALLTYPE get_PreloadTranslations(VARIANT_BOOL* preload) override {
        return forward(__func__, &IZrConnectionSettings::get_PreloadTranslations, preload);
    }
    HRESULT STDMETHODCALLTYPE put_PreloadTranslations(VARIANT_BOOL preload) override {
        return forward(__func__, &IZrConnectionSettings::put_PreloadTranslations, preload);
    }

private:
    using ProxyObject::ProxyObject;
};

}  // namespace bridge_test
