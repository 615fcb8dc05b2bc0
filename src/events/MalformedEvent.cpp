#include "events/MalformedEvent.h"

#include "targetsystem/proxy/ErrorText.h"

namespace ZrHmiEventLogger {

MalformedEvent::MalformedEvent(const std::string& eventClass, std::uint32_t eventId)
    : CAtlException(E_INVALIDARG, "Event " + std::to_string(eventId) + " of class " + eventClass +
                                      " was left out, as its arguments contradict each other. " +
                                      ZrAtlCom::describe(E_INVALIDARG)) {}

}  // namespace ZrHmiEventLogger
