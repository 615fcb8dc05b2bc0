#include "events/ILoggingFunctions.h"

#include "events/Abandoned.h"

namespace ZrHmiEventLogger {

void reportCurrentException(ILoggingFunctions& logging, const ZrHmiSrv::Text& targetName) noexcept
    try {
    try {
        throw;
    } catch (const Abandoned&) {
    } catch (const std::exception& exception) {
        logging.reportCommunicationError(targetName, exception);
    } catch (...) {
        logging.reportCommunicationError(targetName);
    }
} catch (...) {
}

}  // namespace ZrHmiEventLogger
