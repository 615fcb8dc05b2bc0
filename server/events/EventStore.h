#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <boost/multi_index/composite_key.hpp>
#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index/ranked_index.hpp>
#include <boost/multi_index_container.hpp>

#include "server/events/EventFilter.h"

namespace hmi {

/// Some of the events that a filter selects, and how many there are in all.
struct EventPage {
    std::size_t total = 0;
    std::vector<EventRecordPtr> events;
};

/// What the server holds of one target system.
struct TargetCounts {
    std::size_t alarms = 0;
    std::size_t messages = 0;
    std::size_t active = 0;
    std::size_t unconfirmed = 0;
};

/// What waits for an operator: alarms by severity, those without one as the least.
struct Attention {
    using BySeverity = std::array<std::size_t, 5>;
    BySeverity active{};
    BySeverity unconfirmed{};
    ZrHmiSrv::Timestamp oldestUnconfirmed = {};  ///< not set when there is none

    void add(const Attention& other);
};

/// A set of events with an index for each way to look at it. Not synchronised.
class EventStore {
public:
    std::size_t size() const noexcept { return records.size(); }
    /// Null when there is none of that id.
    EventRecordPtr find(EventId id) const;
    /// The oldest message that is the same to the extension, or null.
    EventRecordPtr findSame(const EventRecord& message) const;
    /// The last in the list, or null.
    EventRecordPtr oldest() const;

    /// Takes the place of an event of the same id.
    void insert(EventRecordPtr event);
    void erase(EventId id);
    /// Gets the memory that `replace` needs, so that it throws nothing.
    void makeRoomFor(const EventStore& added);
    /// Takes out some events, and takes all over that another store holds of one target system.
    /// With an exception nothing has changed.
    void replace(const std::vector<EventRecordPtr>& gone, EventStore& added);

    /// The selected events from `offset` on, at most `limit`, in the filter's order. One criterion
    /// or none, and a stretch of time, costs O(log n + limit); of several, the rarest is walked. So
    /// it is in other orders than that of time, except for all events in the order of priority or
    /// of target systems, and for the unconfirmed ones in that of priority.
    EventPage select(const EventFilter& filter, std::size_t offset, std::size_t limit) const;
    /// By name; targets without events have no entry.
    std::map<std::string, TargetCounts> countsByTarget() const;
    /// Of one target system or all. No event is looked at.
    Attention attention(const std::optional<std::string>& target) const;

private:
    template <auto Facet>
    struct FacetOf;
    template <class T, T EventRecord::*Facet>
    struct FacetOf<Facet> {
        using Key = boost::multi_index::composite_key<
            EventRecord, boost::multi_index::member<EventRecord, const T, Facet>,
            boost::multi_index::member<EventRecord, const EventPosition, &EventRecord::position>>;
    };
    /// Ordered by one property, and within it as the list is.
    template <class Tag, auto Facet>
    using FacetIndex = boost::multi_index::ranked_unique<boost::multi_index::tag<Tag>,
                                                         typename FacetOf<Facet>::Key>;
    struct ById {};
    struct ByPosition {};
    struct ByTarget {};
    struct ByKind {};
    struct ByLife {};
    struct ByConfirmation {};
    struct ByPriority {};
    struct ByContent {};
    using Records = boost::multi_index_container<
        EventRecordPtr,
        boost::multi_index::indexed_by<
            boost::multi_index::hashed_unique<
                boost::multi_index::tag<ById>,
                boost::multi_index::member<EventRecord, const EventId, &EventRecord::id>>,
            boost::multi_index::ranked_unique<
                boost::multi_index::tag<ByPosition>,
                boost::multi_index::member<EventRecord, const EventPosition,
                                           &EventRecord::position>>,
            FacetIndex<ByTarget, &EventRecord::target>, FacetIndex<ByKind, &EventRecord::kind>,
            FacetIndex<ByLife, &EventRecord::life>,
            FacetIndex<ByConfirmation, &EventRecord::unconfirmed>,
            FacetIndex<ByPriority, &EventRecord::priority>,
            FacetIndex<ByContent, &EventRecord::contentHash>>>;

    struct OfTarget {
        TargetCounts counts;
        Attention attention;
        std::set<EventPosition> unconfirmed;

        /// Takes over what another one counts; needs no memory.
        void add(OfTarget& other);
    };

    EventPage selectSorted(const EventFilter& filter, std::size_t offset, std::size_t limit) const;
    template <class Serve>
    auto narrowest(const EventFilter& filter, Serve serve) const;
    void count(const EventRecord& event, bool added);

    Records records;
    std::map<std::string, OfTarget> targets;
    Attention all;
};

}  // namespace hmi
