#include "simulator/runtime/Operation.h"

#include <algorithm>
#include <array>

namespace ZrSimulator {

namespace {

constexpr std::array<std::string_view, operationCount> names{
    "CreateInstance",
    "SetTimeout",
    "Advise",
    "ConnectWithSettings",
    "Connect",
    "Disconnect",
    "IsConnected",
    "GetLoggedEvents",
    "GetActiveAlarms",
    "ClearLoggedEvents",
    "GetItem",
    "GetEventText",
    "GetEventClassName",
    "GetSourceName",
    "GetCauseRemedy",
    "GetDetails",
    "Confirm",
    "EventClass",
    "EventId",
    "Severity",
    "HasSource",
    "SourceId",
    "SourceGuid",
    "SourceName",
    "TimeRaised",
    "TimeCleared",
    "TimeConfirmed",
    "ConfirmationState",
    "Arguments",
    "JsonAttribute",
    "QueryInterface",
    "FindConnectionPoint",
    "Unadvise",
    "SetPreload",
    "GetCount",
    "GetText",
    "EventType",
    "IsActive",
    "RequiresConfirmation",
    "InstanceId",
    "Notification",
};
static_assert(names[static_cast<std::size_t>(Operation::Notification)] == "Notification");

}  // namespace

std::string_view nameOf(Operation operation) {
    return names[static_cast<std::size_t>(operation)];
}

std::optional<Operation> parseOperation(std::string_view name) {
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        return std::nullopt;
    return static_cast<Operation>(found - names.begin());
}

}  // namespace ZrSimulator
