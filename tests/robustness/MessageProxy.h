#pragma once

#include "robustness/EventProxy.h"

namespace bridge_test {

class MessageProxy final : public EventProxy<ZrEventLoggerFnxProxyLib::IZrMessage> {
    using IZrMessage = ZrEventLoggerFnxProxyLib::IZrMessage;

public:
    static IZrMessage* standInFor(const ZrAtlCom::ComPtr<IZrMessage>& message) {
        return new MessageProxy(message);
    }

    HRESULT STDMETHODCALLTYPE get_ArgumentCount(ULONG* count) override {
        return forward(__func__, &IZrMessage::get_ArgumentCount, count);
    }
    HRESULT STDMETHODCALLTYPE get_Argument(ULONG index, VARIANT* argument) override {
        return forward(__func__, &IZrMessage::get_Argument, index, argument);
    }

private:
    using EventProxy::EventProxy;
};

}  // namespace bridge_test
