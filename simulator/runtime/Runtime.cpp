#include "simulator/runtime/Runtime.h"

#include <algorithm>
#include <utility>

#include "simulator/runtime/ProtocolError.h"

namespace ZrSimulator {

namespace json = boost::json;

Runtime::Runtime(RuntimeDefinition definition)
    : events(std::move(definition.catalog)),
      ledger(std::move(definition.logged), definition.instanceIds),
      steps(std::move(definition.timeline)),
      repeat(definition.repeat) {}

void Runtime::start() {
    if (steps.empty())
        return;
    timeline.emplace(std::move(steps), repeat,
                     [this](const Action& action) { apply(std::span(&action, 1)); });
}

void Runtime::shutDown() {
    timeline.reset();
    border->faults.close();
    notifier.stop();
}

HRESULT Runtime::connect(const std::shared_ptr<Connection>& connection) {
    Lock lock(mutex);
    if (const HRESULT hr = gate.check(); FAILED(hr))
        return hr;
    return notifier.open(connection) ? S_OK : portNotOpen;
}

std::vector<Ref<Alarm>> Runtime::activeAlarms() {
    Lock lock(mutex);
    return ledger.liveAlarms();
}

std::vector<EventRecord> Runtime::loggedEvents(std::size_t count) {
    Lock lock(mutex);
    return ledger.log.newest(count);
}

void Runtime::clearLoggedEvents() {
    Lock lock(mutex);
    runner().run(ClearLoggedEventsAction{});
}

HRESULT Runtime::confirm(const Alarm& alarm) {
    Lock lock(mutex);
    if (notifier.connections().empty())
        return portNotOpen;
    if (ledger.find(alarm.name()) != &alarm)
        return S_FALSE;
    const auto change = ledger.confirm(alarm.name(), ledger.takeTimes());
    if (!change)
        return S_FALSE;
    notifier.post(Notification::alarmConfirmed(change->alarm, change->removed));
    return S_OK;
}

std::optional<std::size_t> Runtime::apply(std::span<const Action> actions) {
    constexpr std::chrono::milliseconds patience(1000);
    notifier.awaitRoom(patience);
    Lock lock(mutex);
    if (const auto unknown = findUnknownAlarm(actions, ledger))
        return unknown;
    auto running = runner();
    for (const auto& action : actions)
        running.run(action);
    return std::nullopt;
}

void Runtime::applyAndSettle(std::span<const Action> actions) {
    constexpr std::chrono::milliseconds patience(10);
    apply(actions);
    notifier.settle(patience);
}

json::object Runtime::status() {
    const auto connections = notifier.connections();
    json::object calls, failed;
    for (std::size_t i = 0; i < operationCount; ++i) {
        const auto operation = static_cast<Operation>(i);
        calls[nameOf(operation)] = border->calls[operation];
        if (const auto count = border->faults.struck[operation])
            failed[nameOf(operation)] = count;
    }
    json::object alarms;
    Lock lock(mutex);
    for (const auto& alarm : ledger.liveAlarms()) {
        const EventRecord record = alarm->record();
        alarms[alarm->name()] = {{"active", record.cleared == 0},
                                 {"confirmed", record.confirmed != 0}};
    }
    const bool preload = std::any_of(connections.begin(), connections.end(),
                                     [](const auto& open) { return open->preloadTranslations; });
    return {{"connected", !connections.empty()},
            {"preloadTranslations", preload},
            {"advised", border->advised.load()},
            {"alarms", std::move(alarms)},
            {"logged", ledger.log.size()},
            {"calls", std::move(calls)},
            {"queued", notifier.queued()},
            {"failed", std::move(failed)},
            {"liveObjects", border->references.load()}};
}

ActionRunner Runtime::runner() {
    return ActionRunner({border, weak_from_this()}, ledger, gate, notifier);
}

}  // namespace ZrSimulator
