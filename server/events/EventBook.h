#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "platform/Mutex.h"
#include "server/events/Change.h"
#include "server/events/RecordIndex.h"

namespace hmi {

/// The events that the extension has handed over, as readers see them. Thread-safe; every change
/// is told to the sink. Holds at most `capacity` events, beyond that the oldest go.
///
/// In a reset the target systems hand over their events one after another. Each hand-over takes the
/// place of that target system's events in one step and is visible at once, so that none waits for
/// another. The extension holds a lock meanwhile that keeps back the live calls of that target
/// system: what was called before is part of the hand-over, what comes later changes its result.
/// At the end those target systems have no events that handed over none, except for what they sent
/// since the reset began: they are newer than the reset is, and the next one brings them.
///
/// Alarms that a target system does not hand over while it is lost are not gone: they are kept
/// aside as what was known last, until it has been imported again.
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
    /// system, then end; or abandon, which leaves those as they are that handed over nothing.
    void beginReset();
    /// Events that are known already keep their ids. `isImported`: the target system has been
    /// imported, and so what it does not hand over is gone. With an exception the target system's
    /// events stay as they were, also at the end of the reset.
    void replaceTarget(const std::string& target, std::span<const ZrHmiSrv::Event> events,
                       bool isImported = true);
    void endReset();
    void abandonReset();

    /// What was known last of the alarms of a target system does not count any more.
    void dropLastKnown(const std::string& target);

    /// Makes another record of an event; null leaves it. Called under the book's mutex.
    using Modify = std::function<EventRecordPtr(const EventRecord&)>;
    /// Puts what `modify` makes of an event, also of one that was known last, into its place and
    /// tells it. Null when it is not held.
    EventRecordPtr modify(EventId id, ChangeType type, const Modify& modify);

    EventRecordPtr find(EventId id) const;
    /// Of an alarm whose target system was lost.
    EventRecordPtr findLastKnown(EventId id) const;
    EventPage select(const EventFilter& filter, std::size_t offset, std::size_t limit) const;
    std::map<std::string, TargetCounts> countsByTarget() const;
    /// Of one target system or all; `withLastKnown`: those included whose target system was lost.
    Attention attention(const std::optional<std::string>& target, bool withLastKnown) const;

private:
    struct Reset {
        std::uint64_t since;  ///< the last arrival before it
        std::set<std::string> handedOver;
    };

    void insert(const EventRecordPtr& event, ChangeType type) REQUIRES(mutex);
    EventRecordPtr known(EventId id) const REQUIRES(mutex);
    bool forgetLastKnown(const std::string& target) REQUIRES(mutex);
    void keepConfirmations(Replacement& replacement, RecordIndex& added, RecordIndex& lost) const
        REQUIRES(mutex);
    void change(const ZrHmiSrv::Alarm& alarm, ChangeType type);
    void dropBefore(std::uint64_t arrival, const std::string& target,
                    std::vector<EventRecordPtr>& dropped) REQUIRES(mutex);
    void forgetBeyondCapacity() REQUIRES(mutex);

    IChangeSink& sink;
    const std::size_t capacity;
    std::atomic<std::uint64_t> arrivals = 0;
    mutable Mutex mutex;  ///< guards all below; short, nothing but the sink is called under it
    RecordIndex current GUARDED_BY(mutex);
    RecordIndex lastKnown GUARDED_BY(mutex);  ///< none of them is in `current`
    std::optional<Reset> reset GUARDED_BY(mutex);
    std::uint64_t modifications GUARDED_BY(mutex) = 0;
    std::set<std::string> complete GUARDED_BY(mutex);  ///< have handed over all of their events
};

}  // namespace hmi
