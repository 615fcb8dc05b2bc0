#pragma once

#include "simulator/com/EventObject.h"

namespace ZrSimulator {

/// A message as it was sent.
class Message final : public EventObject<NoMutex, ZrEventLoggerFnxProxyLib::IZrMessage> {
public:
    Message(std::shared_ptr<Border> border, EventRecord record);

    HRESULT STDMETHODCALLTYPE get_ArgumentCount(ULONG* count) override;
    HRESULT STDMETHODCALLTYPE get_Argument(ULONG index, VARIANT* argument) override;
};

}  // namespace ZrSimulator
