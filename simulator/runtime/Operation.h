#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace ZrSimulator {

/// What clients call, as it is counted and as faults name it. `Arguments` is all four ways to
/// read an event's arguments; GetItem and GetCount are those of every collection, GetText reads a
/// text of a cause, a remedy or a detail, QueryInterface is that of every object.
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
    // What the library answers by itself: it may fail, but nothing slows it down or holds it.
    QueryInterface,
    FindConnectionPoint,
    Unadvise,
    SetPreload,
    GetCount,
    GetText,
    EventType,
    IsActive,
    RequiresConfirmation,
    InstanceId,
    /// The other way round: a notification is delivered to a sink.
    Notification,
};

inline constexpr std::size_t operationCount = 41;

/// Whether the runtime is asked, which may take its time.
constexpr bool reachesRuntime(Operation operation) {
    return operation < Operation::QueryInterface;
}

std::string_view nameOf(Operation operation);
std::optional<Operation> parseOperation(std::string_view name);

}  // namespace ZrSimulator
