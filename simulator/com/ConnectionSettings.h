#pragma once

#include <atomic>

#include "simulator/com/RuntimeObject.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrSimulator {

/// What a client chooses for one connection. The stand-in has all texts at hand, so preloading
/// changes nothing.
class ConnectionSettings final
    : public RuntimeObject<ZrEventLoggerFnxProxyLib::IZrConnectionSettings> {
public:
    explicit ConnectionSettings(std::shared_ptr<Border> border)
        : RuntimeObject(std::move(border)) {}

    HRESULT STDMETHODCALLTYPE get_PreloadTranslations(VARIANT_BOOL* choice) override {
        return readPlain(choice, [&] { return preload.load(); });
    }
    HRESULT STDMETHODCALLTYPE put_PreloadTranslations(VARIANT_BOOL choice) override {
        return catchToResult([&]() -> HRESULT {
            if (const auto answer = border->enter(Operation::SetPreload))
                return *answer;
            preload = choice;
            return S_OK;
        });
    }

private:
    std::atomic<VARIANT_BOOL> preload = VARIANT_FALSE;
};

}  // namespace ZrSimulator
