#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace ZrSimulator {

/// What clients call, as it is counted and as faults name it. `Arguments` is all four ways to
/// read an event's arguments; GetItem is that of every collection.
enum class Operation : unsigned char {
    CreateInstance,
    SetTimeout,
    Advise,
    ConnectWithSettings,
    Connect,
    Disconnect,
    IsConnected,
    GetLoggedEvents,
    GetActiveAlarms,
    ClearLoggedEvents,
    GetItem,
    GetEventText,
    GetEventClassName,
    GetSourceName,
    GetCauseRemedy,
    GetDetails,
    Confirm,
    EventClass,
    EventId,
    Severity,
    HasSource,
    SourceId,
    SourceGuid,
    SourceName,
    TimeRaised,
    TimeCleared,
    TimeConfirmed,
    ConfirmationState,
    Arguments,
    JsonAttribute,
};

inline constexpr std::size_t operationCount = 30;

std::string_view nameOf(Operation operation);
std::optional<Operation> parseOperation(std::string_view name);

}  // namespace ZrSimulator
