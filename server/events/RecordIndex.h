#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <boost/unordered/unordered_flat_map.hpp>

#include "server/events/EventFilter.h"
#include "server/events/EventSequence.h"

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

/// A set of events. Those of one target system that no filter tells apart but by their time lie in
/// one sequence, a cell, so that an event has one place, and a list is a merge of a few cells. Not
/// synchronised.
class RecordIndex {
public:
    std::size_t size() const noexcept { return byId.size(); }
    /// Null when there is none of that id.
    EventRecordPtr find(EventId id) const;
    /// The oldest message that is the same to the extension, or null.
    EventRecordPtr findSame(const EventRecord& message) const;
    /// The last in the list, or null.
    EventRecordPtr oldest() const;

    /// Takes the place of an event of the same id. With an exception nothing has changed.
    void insert(EventRecordPtr event);
    void erase(EventId id) noexcept;

    /// A step that has all the memory that it needs: some events leave, and all of another index
    /// are taken over, which have the place of those with their ids.
    class Prepared;
    /// Nothing else may change this index until it is applied; both live as long.
    Prepared prepare(const std::vector<EventRecordPtr>& gone, const RecordIndex& added);
    void apply(Prepared prepared) noexcept;

    /// The selected events from `offset` on, at most `limit`, in the filter's order. Nothing else
    /// is looked at: a page costs its length, and a little for each cell that the filter selects.
    EventPage select(const EventFilter& filter, std::size_t offset, std::size_t limit) const;
    /// By name; targets without events have no entry.
    std::map<std::string, TargetCounts> countsByTarget() const;
    /// Of one target system or all. No event is looked at.
    Attention attention(const std::optional<std::string>& target) const;

private:
    struct Cell {
        explicit Cell(const EventRecord& event) : shape(event) {}
        EventShape shape;
        EventSequence events;
    };
    using Cells = std::vector<Cell>;  ///< none of them is empty
    using Targets = std::map<std::string, Cells, std::less<>>;

    static std::uint64_t keyOf(EventId id) noexcept;
    static void insertInto(Cells& cells, const EventRecordPtr& event);
    static void eraseFrom(Cells& cells, const EventRecord& event) noexcept;
    void eraseFromTarget(const EventRecord& event) noexcept;

    Targets targets;
    boost::unordered_flat_map<std::uint64_t, EventRecordPtr> byId;
};

class RecordIndex::Prepared {
    friend class RecordIndex;
    Prepared(const std::vector<EventRecordPtr>& gone, const RecordIndex& added)
        : gone(gone), added(added) {}

    const std::vector<EventRecordPtr>& gone;
    const RecordIndex& added;
    Targets changed;  ///< those that get events, as they are afterwards
};

}  // namespace hmi
