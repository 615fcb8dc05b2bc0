#include "events/ILoggingFunctions.h"

namespace ZrHmiEventLogger {

void reportCurrentException(ILoggingFunctions& logging, const ZrHmiSrv::Text& targetName) {
    try {
        throw;
    } catch (const std::exception& exception) {
        logging.reportCommunicationError(targetName, exception);
    } catch (...) {
        logging.reportCommunicationError(targetName);
    }
}

}  // namespace ZrHmiEventLogger
