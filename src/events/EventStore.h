#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include <boost/container/small_vector.hpp>

#include "events/EventContext.h"
#include "events/LimitedEventContainer.h"
#include "events/ScopedEventPointer.h"
#include "host/Listeners.h"
#include "platform/Mutex.h"
#include "targetsystem/proxy/ZrEventLoggerFnxProxy.h"

namespace ZrHmiEventLogger {

/// The host id under which a live alarm is stored.
struct LiveAlarmId {
    const ZrEventLoggerFnxProxyLib::IZrAlarm* object;
    AlarmKey key;
    int hostId;
};

/// The events of one target system that stand in the host, and the locks around them. Any thread.
/// Nothing is reported from inside a change: what was evicted is handed to the caller.
class EventStore {
public:
    using IZrAlarm = ZrEventLoggerFnxProxyLib::IZrAlarm;
    using Container = LimitedEventContainer<ScopedEventPointer<IZrAlarm>, IZrAlarm>;
    using AlarmPointer = std::shared_ptr<ScopedEventPointer<IZrAlarm>>;
    using Evicted = boost::container::small_vector<ZrHmiSrv::Value, 2>;  ///< payloads

    explicit EventStore(const EventContext& context);

    /// Held while the events change and the host is told of it, which is one step, and while they
    /// are handed over. Taken after sinkMutex; never held across a call of the proxy. A target
    /// that is retired under it, or was stopped, changes nothing in the host any more: who takes
    /// it looks at the context first. Recursive, so that a host may ask for the events from
    /// inside a slot that tells of this target.
    RecursiveMutex publishMutex;

    /// Runs `apply` on the events; publishes the counters. Answers what left, oldest
    /// eviction first.
    template <class Apply>
    Evicted change(Apply apply) REQUIRES(publishMutex) EXCLUDES(storeMutex) {
        Lock lock(storeMutex);
        apply(*events);
        publish();
        return std::exchange(evicted, {});
    }

    template <class Look>
    void read(Look look) const EXCLUDES(storeMutex) {
        Lock lock(storeMutex);
        look(std::as_const(*events));
    }

    /// The rebuilt events take the place of the old ones, which are handed out so that they are
    /// destroyed with no lock held.
    std::shared_ptr<Container> exchange(std::shared_ptr<Container> rebuilt) REQUIRES(publishMutex)
        EXCLUDES(storeMutex);
    /// Returns when the change that is under way has been told, or at the deadline.
    void awaitChange(std::chrono::steady_clock::time_point deadline) EXCLUDES(publishMutex);
    /// Takes out all events that are alarms; false when there are none.
    bool removeAlarms() EXCLUDES(publishMutex, storeMutex);
    /// Hands all events to the receiver, oldest first, as one batch that no change interrupts.
    /// Those of a target that is over are nobody's any more. False when a change is under way.
    /// Waits for none: the caller may itself be inside a change of another target, which a thread
    /// inside a change of this one may be waiting for.
    bool tryProvideEvents(ZrHmiSrv::IEventReceiver& receiver) EXCLUDES(publishMutex, storeMutex);
    std::vector<ZrHmiSrv::Event> eventsOldestFirst() const EXCLUDES(storeMutex);

    /// All that have a live proxy alarm, oldest first.
    std::vector<LiveAlarmId> liveAlarms() const EXCLUDES(storeMutex);
    /// Keeps the live alarm of a host id alive; null when there is none.
    AlarmPointer pin(int hostId) const EXCLUDES(storeMutex);

    /// A copy that is published after every change: waits for no one who holds the store.
    EventStatistics statistics() const EXCLUDES(statisticsMutex);

    /// Logs what was evicted and tells the host to drop it.
    void forget(const Evicted& events) const REQUIRES(publishMutex);

private:
    void publish() REQUIRES(storeMutex);
    void forgetEvent(const ZrHmiSrv::Value& payload) const REQUIRES(publishMutex);
    void collectEvictions() REQUIRES(storeMutex);

    const EventContext& context;
    /// Guards the events. Taken after publishMutex; never held across a call of any kind.
    mutable Mutex storeMutex;
    std::shared_ptr<Container> events GUARDED_BY(storeMutex) = std::make_shared<Container>();
    Evicted evicted GUARDED_BY(storeMutex);
    mutable Mutex statisticsMutex;
    EventStatistics published GUARDED_BY(statisticsMutex);
};

}  // namespace ZrHmiEventLogger
