#include "simulator/com/Message.h"

namespace ZrSimulator {

Message::Message(std::shared_ptr<Border> border, EventRecord record)
    : EventObject(std::move(border), std::move(record)) {}

HRESULT Message::get_ArgumentCount(ULONG* count) {
    return readArgumentCount(count);
}

HRESULT Message::get_Argument(ULONG index, VARIANT* argument) {
    return readArgument(index, argument);
}

}  // namespace ZrSimulator
