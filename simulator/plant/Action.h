#pragma once

#include <bitset>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "simulator/plant/EventContent.h"
#include "simulator/runtime/Operation.h"

namespace ZrSimulator {

/// One or several events that are alike. Without a time of their own, they are raised now, each
/// 100 ns later than the one before.
struct EventSeries {
    std::shared_ptr<const EventContent> content;
    std::optional<FileTime> timeRaised;
    std::uint32_t count = 1;
};

struct RaiseAction {
    /// Of the alarm number `index` of the series.
    std::string nameAt(std::uint32_t index) const;

    std::string alarm;
    bool numbered = false;  ///< the alarms are called "NAME-0", "NAME-1" ...
    EventSeries series;
};
struct ClearAction {
    std::string alarm;
    std::optional<FileTime> timeCleared;
};
struct ConfirmAction {
    std::string alarm;
};
struct MessageAction {
    EventSeries series;
};
struct DatabaseChangedAction {
    LONG reason;
};
struct ClearLoggedEventsAction {};
struct DropAction {};
struct RefuseAction {
    HRESULT hresult;
    std::optional<std::chrono::milliseconds> time;  ///< without it, until AcceptAction
};
struct AcceptAction {};

/// The calls that a fault is for.
using AffectedCalls = std::bitset<operationCount>;

/// What becomes of a call that fails.
enum class Failure {
    none,            ///< it goes on
    result,          ///< it answers a failing HRESULT and does nothing
    answersNothing,  ///< it answers success, but neither does it anything nor hands it out anything
    exception,       ///< it throws a std::exception
    foreignException,
};

struct ActionList;

/// Lets calls fail: first `skip` good ones, then `times` failing ones.
struct FailAction {
    AffectedCalls calls;
    Failure failure;
    HRESULT hresult;                              ///< of a failing result
    std::shared_ptr<const ActionList> meanwhile;  ///< carried out when the call comes; may be null
    std::uint32_t skip;
    std::uint32_t times;
};
struct DelayAction {
    AffectedCalls calls;
    std::chrono::milliseconds time;  ///< 0: no longer
};
struct PauseAction {
    AffectedCalls calls;
};
struct ResumeAction {};
struct HoldAction {};
struct ReleaseAction {};

/// What the engineer can let a runtime do.
using Action =
    std::variant<RaiseAction, ClearAction, ConfirmAction, MessageAction, DatabaseChangedAction,
                 ClearLoggedEventsAction, DropAction, RefuseAction, AcceptAction, FailAction,
                 DelayAction, PauseAction, ResumeAction, HoldAction, ReleaseAction>;

struct ActionList {
    std::vector<Action> actions;
};

struct TimelineStep {
    std::chrono::milliseconds after;  ///< the step before, or the start
    Action action;
};

}  // namespace ZrSimulator
