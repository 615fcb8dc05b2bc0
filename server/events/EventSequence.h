#pragma once

#include <cstddef>
#include <iterator>
#include <vector>

#include "server/events/EventRecord.h"

namespace hmi {

/// Events by age, the oldest first, which is the list's order from its end. What is newest comes
/// and what is oldest goes in no time; anything else moves a few hundred neighbours at most. An
/// event is counted, and the nth found, by looks at one number for every few hundred events. Not
/// synchronised.
class EventSequence {
    struct Entry {
        EventPosition position;
        EventRecordPtr event;
    };
    using Chunk = std::vector<Entry>;

public:
    class Iterator {
    public:
        using iterator_category = std::bidirectional_iterator_tag;
        using value_type = EventRecordPtr;
        using difference_type = std::ptrdiff_t;
        using pointer = const EventRecordPtr*;
        using reference = const EventRecordPtr&;

        Iterator() = default;
        reference operator*() const { return (*chunk)[index].event; }
        const EventPosition& position() const { return (*chunk)[index].position; }
        Iterator& operator++() {
            if (++index == chunk->size()) {
                ++chunk;
                index = 0;
            }
            return *this;
        }
        Iterator& operator--() {
            if (index == 0)
                index = (--chunk)->size();
            --index;
            return *this;
        }
        Iterator operator++(int);
        Iterator operator--(int);
        friend bool operator==(const Iterator&, const Iterator&) = default;

    private:
        friend class EventSequence;
        Iterator(std::vector<Chunk>::const_iterator chunk, std::size_t index)
            : chunk(chunk), index(index) {}

        std::vector<Chunk>::const_iterator chunk;
        std::size_t index = 0;
    };

    std::size_t size() const noexcept { return count; }
    bool empty() const noexcept { return count == 0; }
    Iterator begin() const { return {chunks.begin(), 0}; }
    Iterator end() const { return {chunks.end(), 0}; }
    /// The one that so many are older than; the end when there are no more.
    Iterator at(std::size_t age) const;
    /// How many are older than this place.
    std::size_t countOlder(const EventPosition& position) const;

    /// It is not held yet. With an exception nothing has changed.
    void insert(EventRecordPtr event);
    /// It is held.
    void erase(const EventRecord& event) noexcept;

private:
    static constexpr std::size_t chunkSize = 256;

    std::size_t chunkFor(const EventPosition& position) const;
    void joinNext(std::size_t chunk) noexcept;

    std::vector<Chunk> chunks;  ///< none of them is empty
    std::size_t count = 0;
};

inline EventSequence::Iterator EventSequence::Iterator::operator++(int) {
    Iterator before = *this;
    ++*this;
    return before;
}

inline EventSequence::Iterator EventSequence::Iterator::operator--(int) {
    Iterator before = *this;
    --*this;
    return before;
}

}  // namespace hmi
