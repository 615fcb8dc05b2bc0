#pragma once

#include <atomic>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>

#include "platform/Mutex.h"
#include "server/events/Change.h"
#include "server/events/EventStore.h"

namespace hmi {

/// The events that the extension has handed over, as readers see them. Thread-safe; every change
/// is told to the sink. Holds at most `capacity` events, beyond that the oldest go.
///
/// A reset builds a second set while the first stays visible, and then takes its place in one
/// step. The extension hands over each target system under a lock that also keeps back the live
/// calls of that target system. So a live call that comes while a reset is being built belongs to
/// both sets if its target system has been handed over, and otherwise is part of what will be.
class EventBook {
public:
    explicit EventBook(IChangeSink& sink, std::size_t capacity = 1'000'000)
        : sink(sink), capacity(capacity) {}

    /// Replaces an alarm of the same id.
    void raise(ZrHmiSrv::Alarm alarm);
    void update(ZrHmiSrv::Alarm alarm);
    /// The alarm has ended its life, but stays in the list.
    void end(ZrHmiSrv::Alarm alarm);
    void add(ZrHmiSrv::Message message);
    /// Takes out an alarm by its id, a message by its content, one copy a call. False: not held.
    bool drop(const EventRecord& dropped);

    /// The steps of a reset, from one thread at a time: begin, one replacement for each target
    /// system, then publish; or abandon, which leaves everything as it is.
    void beginReset();
    void replaceTarget(const std::string& target, std::span<const ZrHmiSrv::Event> events);
    void publishReset();
    void abandonReset();

    EventRecordPtr find(EventId id) const;
    EventPage select(const EventFilter& filter, std::size_t offset, std::size_t limit) const;
    std::map<std::string, TargetCounts> countsByTarget() const;

private:
    /// The set that a reset builds.
    struct Draft {
        EventStore store;
        std::set<std::string> handedOver;

        /// An event without a target system is in no batch.
        bool covers(const std::string& target) const {
            return target.empty() || handedOver.contains(target);
        }
    };

    void insert(const EventRecordPtr& event, ChangeType type) REQUIRES(mutex);
    void change(const ZrHmiSrv::Alarm& alarm, ChangeType type);
    void eraseTarget(EventStore& store, const std::string& target) REQUIRES(mutex);

    IChangeSink& sink;
    const std::size_t capacity;
    std::atomic<std::uint64_t> arrivals = 0;
    mutable Mutex mutex;  ///< guards all below; short, nothing but the sink is called under it
    EventStore current GUARDED_BY(mutex);
    std::optional<Draft> draft GUARDED_BY(mutex);
};

}  // namespace hmi
