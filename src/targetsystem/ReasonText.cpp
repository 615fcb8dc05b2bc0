#include "targetsystem/ReasonText.h"

using namespace ZrEventLoggerFnxProxyLib;

namespace ZrHmiEventLogger {

std::string reasonText(tagDatabaseChangeReasonEnum reason) {
    switch (reason) {
        case databaseChangeUndefined:
            return "Undefined";
        case databaseChangeLoggedEventsCleared:
            return "ClearLoggedEvents";
        case databaseChangeMaximumSizeReached:
            return "MaximumSizeReached";
        case databaseChangeDeleted:
            return "Deleted";
    }
    return std::to_string(static_cast<LONG>(reason));
}

}  // namespace ZrHmiEventLogger
