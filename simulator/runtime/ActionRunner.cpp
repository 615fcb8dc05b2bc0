#include "simulator/runtime/ActionRunner.h"

#include <algorithm>
#include <unordered_set>
#include <utility>
#include <vector>

#include "simulator/runtime/Runtime.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrSimulator {

namespace {

/// The name of the alarm that has to exist for an action; null when it needs none.
const std::string* neededAlarm(const Action& action) {
    if (const auto* clear = std::get_if<ClearAction>(&action))
        return &clear->alarm;
    if (const auto* confirm = std::get_if<ConfirmAction>(&action))
        return &confirm->alarm;
    return nullptr;
}

}  // namespace

ActionRunner::ActionRunner(AlarmOrigin origin, EventLedger& ledger, ConnectGate& gate,
                           Notifier& notifier)
    : origin(std::move(origin)), ledger(ledger), gate(gate), notifier(notifier) {}

template <class Add>
void ActionRunner::forEach(const EventSeries& series, Add add) {
    const FileTime step = series.timeRaised ? 0 : 1;
    FileTime time = series.timeRaised ? *series.timeRaised : ledger.takeTimes(series.count);
    constexpr std::size_t portion = 256;  // so that their receiver does not wait for each of them
    std::vector<Notification> notifications;
    for (std::uint32_t index = 0; index < series.count; ++index, time += step) {
        notifications.push_back(add(index, time));
        if (notifications.size() == portion || index + 1 == series.count) {
            notifier.post(notifications);
            notifications.clear();
        }
    }
}

void ActionRunner::operator()(const RaiseAction& action) {
    forEach(action.series, [&](std::uint32_t index, FileTime time) {
        return Notification::alarmRaised(
            ledger.raise(action.nameAt(index), action.series.content, time, origin));
    });
}

void ActionRunner::operator()(const ClearAction& action) {
    const FileTime time = action.timeCleared ? *action.timeCleared : ledger.takeTimes();
    if (const auto change = ledger.clear(action.alarm, time))
        notifier.post(Notification::alarmCleared(change->alarm, change->removed));
}

void ActionRunner::operator()(const ConfirmAction& action) {
    if (const auto change = ledger.confirm(action.alarm, ledger.takeTimes()))
        notifier.post(Notification::alarmConfirmed(change->alarm, change->removed));
}

void ActionRunner::operator()(const MessageAction& action) {
    forEach(action.series, [&](std::uint32_t, FileTime time) {
        const auto record = ledger.addMessage(action.series.content, time);
        return Notification::messageSent(new Message(origin.border, record));
    });
}

void ActionRunner::operator()(const DatabaseChangedAction& action) {
    notifier.post(Notification::databaseChanged(action.reason));
}

void ActionRunner::operator()(const ClearLoggedEventsAction&) {
    ledger.log.clear();
    notifier.post(
        Notification::databaseChanged(ZrEventLoggerFnxProxyLib::databaseChangeLoggedEventsCleared));
}

void ActionRunner::operator()(const DropAction&) {
    notifier.closeAll();
}

void ActionRunner::operator()(const RefuseAction& action) {
    gate.refuse(action);
}

void ActionRunner::operator()(const AcceptAction&) {
    gate.accept();
}

void ActionRunner::operator()(const FailAction& action) {
    std::function<void()> meanwhile;
    if (action.meanwhile)
        meanwhile = [runtime = origin.runtime, list = action.meanwhile] {
            if (const auto owner = runtime.lock())
                owner->applyAndSettle(list->actions);
        };
    origin.border->faults.add(action, std::move(meanwhile));
}

void ActionRunner::operator()(const DelayAction& action) {
    origin.border->faults.delay(action);
}

void ActionRunner::operator()(const PauseAction& action) {
    origin.border->faults.pause(action.calls);
}

void ActionRunner::operator()(const ResumeAction&) {
    origin.border->faults.resume();
}

void ActionRunner::operator()(const HoldAction&) {
    notifier.hold(true);
}

void ActionRunner::operator()(const ReleaseAction&) {
    notifier.hold(false);
}

std::optional<std::size_t> findUnknownAlarm(std::span<const Action> actions,
                                            const EventLedger& ledger) {
    if (std::none_of(actions.begin(), actions.end(), neededAlarm))
        return std::nullopt;
    std::unordered_set<std::string> raised;
    for (std::size_t i = 0; i < actions.size(); ++i) {
        const auto* raise = std::get_if<RaiseAction>(&actions[i]);
        for (std::uint32_t n = 0; raise && n < raise->series.count; ++n)
            raised.insert(raise->nameAt(n));
        const auto* needed = neededAlarm(actions[i]);
        if (needed && !ledger.knows(*needed) && raised.count(*needed) == 0)
            return i;
    }
    return std::nullopt;
}

}  // namespace ZrSimulator
