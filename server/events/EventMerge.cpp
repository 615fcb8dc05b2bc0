#include "server/events/EventMerge.h"

#include <algorithm>

namespace hmi {

void EventMerge::add(std::uint64_t rank, const Part& part) {
    if (part.size() == 0)
        return;
    ranked.push_back({rank, part});
    total += part.size();
}

std::vector<EventRecordPtr> EventMerge::page(std::size_t offset, std::size_t limit) {
    std::vector<EventRecordPtr> page;
    offset = std::min(offset, total);
    limit = std::min(limit, total - offset);
    page.reserve(limit);
    std::sort(ranked.begin(), ranked.end(),
              [](const Ranked& a, const Ranked& b) { return a.rank < b.rank; });
    for (auto next = ranked.begin(); next != ranked.end() && page.size() < limit;) {
        Parts parts;
        std::size_t size = 0;
        for (const std::uint64_t rank = next->rank; next != ranked.end() && next->rank == rank;
             ++next) {
            parts.push_back(next->part);
            size += next->part.size();
        }
        const std::size_t skipped = std::min(offset, size);
        offset -= skipped;
        skipNewest(parts, skipped);
        takeNewest(parts, std::min(size - skipped, limit - page.size()), page);
    }
    return page;
}

std::vector<EventRecordPtr> EventMerge::pageFromEnd(std::size_t offset, std::size_t limit) {
    const std::size_t last = total - std::min(offset, total);
    const std::size_t first = last - std::min(limit, last);
    std::vector<EventRecordPtr> reversed = page(first, last - first);
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

/// Halves, again and again, the stretch of the part of which least is known.
void EventMerge::skipNewest(Parts& parts, std::size_t count) {
    // Of each part, how many are skipped at least and at most.
    struct Bounds {
        std::size_t low;
        std::size_t high;
    };
    std::vector<Bounds> bounds;
    for (const Part& part : parts)
        bounds.push_back({0, std::min(count, part.size())});
    for (;;) {
        const auto widest =
            std::max_element(bounds.begin(), bounds.end(), [](const Bounds& a, const Bounds& b) {
                return a.high - a.low < b.high - b.low;
            });
        if (widest == bounds.end() || widest->high == widest->low)
            break;
        const auto chosen = static_cast<std::size_t>(widest - bounds.begin());
        const std::size_t half = widest->low + (widest->high - widest->low) / 2;
        const EventPosition pivot =
            parts[chosen].events->at(parts[chosen].last - 1 - half).position();
        std::vector<std::size_t> newer;
        std::size_t all = 0;
        for (const Part& part : parts) {
            const bool isChosen = newer.size() == chosen;
            const std::size_t notNewer = part.events->countOlder(pivot) + (isChosen ? 1 : 0);
            newer.push_back(part.last - std::clamp(notNewer, part.first, part.last));
            all += newer.back();
        }
        const bool isSkipped = all < count;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            Bounds& of = bounds[i];
            if (isSkipped)
                of.low = std::clamp(newer[i] + (i == chosen ? 1 : 0), of.low, of.high);
            else
                of.high = std::clamp(newer[i], of.low, of.high);
        }
    }
    for (std::size_t i = 0; i < parts.size(); ++i)
        parts[i].last -= bounds[i].low;
}

void EventMerge::takeNewest(const Parts& parts, std::size_t count,
                            std::vector<EventRecordPtr>& to) {
    /// What of a part is still to come.
    struct Rest {
        EventSequence::Iterator next;  ///< the newest of it
        std::size_t count;
    };
    const auto isLater = [](const Rest& a, const Rest& b) {
        return b.next.position() < a.next.position();
    };
    std::vector<Rest> rests;
    for (const Part& part : parts)
        if (part.size() > 0)
            rests.push_back({part.events->at(part.last - 1), part.size()});
    std::make_heap(rests.begin(), rests.end(), isLater);
    for (; count > 0; --count) {
        std::pop_heap(rests.begin(), rests.end(), isLater);
        Rest& newest = rests.back();
        to.push_back(*newest.next);
        if (--newest.count == 0) {
            rests.pop_back();
        } else {
            --newest.next;
            std::push_heap(rests.begin(), rests.end(), isLater);
        }
    }
}

}  // namespace hmi
