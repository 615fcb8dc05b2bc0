#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <boost/json/object.hpp>

#include "platform/Mutex.h"
#include "simulator/plant/Plant.h"
#include "simulator/runtime/ActionRunner.h"
#include "simulator/runtime/Timeline.h"

namespace ZrSimulator {

/// One simulated automation runtime: the loggers of clients on one side, the engineer and the
/// timeline on the other. Any thread; nothing is called back under its lock.
class Runtime : public std::enable_shared_from_this<Runtime> {
public:
    explicit Runtime(RuntimeDefinition definition);

    /// Starts the timeline.
    void start();
    /// Closes all connections, frees the calls that wait and ends the threads. Needed before the
    /// runtime is destroyed, and not from within a notification.
    void shutDown();

    const EventCatalog& catalog() const { return events; }
    const std::shared_ptr<Border>& clientBorder() const { return border; }

    HRESULT connect(const std::shared_ptr<Connection>& connection);
    void disconnect(Connection& connection) { notifier.close(connection); }
    std::vector<Ref<Alarm>> activeAlarms();
    /// The newest, oldest first.
    std::vector<EventRecord> loggedEvents(std::size_t count);
    void clearLoggedEvents();
    /// S_FALSE when the alarm does not wait for a confirmation.
    HRESULT confirm(const Alarm& alarm);

    /// Applies all actions without a pause between them, or none and answers the index of one
    /// that names an alarm which has never been raised.
    std::optional<std::size_t> apply(std::span<const Action> actions);
    /// The same in the middle of a client's call: lets the notifications of it arrive as far as
    /// they do not wait for that call themselves.
    void applyAndSettle(std::span<const Action> actions);
    boost::json::object status();

private:
    ActionRunner runner() REQUIRES(mutex);

    const EventCatalog events;
    const std::shared_ptr<Border> border = std::make_shared<Border>();
    Notifier notifier{border};

    Mutex mutex;
    EventLedger ledger GUARDED_BY(mutex);
    ConnectGate gate GUARDED_BY(mutex);

    std::vector<TimelineStep> steps;  ///< until `start`
    const bool repeat;
    std::optional<Timeline> timeline;  ///< from `start` to `shutDown`
};

}  // namespace ZrSimulator
