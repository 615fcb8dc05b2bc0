#pragma once

#include <optional>
#include <span>

#include "simulator/plant/Action.h"
#include "simulator/runtime/ConnectGate.h"
#include "simulator/runtime/EventLedger.h"
#include "simulator/runtime/Notifier.h"

namespace ZrSimulator {

/// Carries out actions on the parts of a runtime, whose lock the caller holds.
class ActionRunner {
public:
    ActionRunner(AlarmOrigin origin, EventLedger& ledger, ConnectGate& gate, Notifier& notifier);

    void run(const Action& action) { std::visit(*this, action); }

    void operator()(const RaiseAction& action);
    void operator()(const ClearAction& action);
    void operator()(const ConfirmAction& action);
    void operator()(const MessageAction& action);
    void operator()(const DatabaseChangedAction& action);
    void operator()(const ClearLoggedEventsAction& action);
    void operator()(const DropAction& action);
    void operator()(const RefuseAction& action);
    void operator()(const AcceptAction& action);
    void operator()(const FailAction& action);
    void operator()(const DelayAction& action);
    void operator()(const PauseAction& action);
    void operator()(const ResumeAction& action);
    void operator()(const HoldAction& action);
    void operator()(const ReleaseAction& action);

private:
    /// Calls `add(index, time)` for each event of a series.
    template <class Add>
    void forEach(const EventSeries& series, Add add);

    const AlarmOrigin origin;
    EventLedger& ledger;
    ConnectGate& gate;
    Notifier& notifier;
};

/// The first action that clears or confirms an alarm which has never been raised, not even by an
/// action before it.
std::optional<std::size_t> findUnknownAlarm(std::span<const Action> actions,
                                            const EventLedger& ledger);

}  // namespace ZrSimulator
