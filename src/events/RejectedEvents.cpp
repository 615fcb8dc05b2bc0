#include "events/RejectedEvents.h"

namespace ZrHmiEventLogger {

void RejectedEvents::add(const MalformedEvent& exception) {
    ++rejected;
    Lock lock(store.publishMutex);
    context.proceed();
    context.logging.reportCommunicationError(context.targetName, exception);
}

}  // namespace ZrHmiEventLogger
