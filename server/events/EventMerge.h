#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "server/events/EventSequence.h"

namespace hmi {

/// One list of many parts of sequences: first all of the smallest rank, within a rank the newest
/// first. Lives while the sequences do not change.
class EventMerge {
public:
    /// Those with an age from `first` on, before `last`.
    struct Part {
        const EventSequence* events;
        std::size_t first;
        std::size_t last;
        std::size_t size() const { return last - first; }
    };

    void add(std::uint64_t rank, const Part& part);
    std::size_t size() const noexcept { return total; }
    std::vector<EventRecordPtr> page(std::size_t offset, std::size_t limit);
    /// The same of the list from its end on.
    std::vector<EventRecordPtr> pageFromEnd(std::size_t offset, std::size_t limit);

private:
    struct Ranked {
        std::uint64_t rank;
        Part part;
    };
    using Parts = std::vector<Part>;

    static void skipNewest(Parts& parts, std::size_t count);
    static void takeNewest(const Parts& parts, std::size_t count, std::vector<EventRecordPtr>& to);

    std::vector<Ranked> ranked;
    std::size_t total = 0;
};

}  // namespace hmi
