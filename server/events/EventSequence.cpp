#include "server/events/EventSequence.h"

#include <algorithm>
#include <utility>

namespace hmi {

namespace {

/// What stands before in the list is newer.
bool isOlder(const EventPosition& a, const EventPosition& b) {
    return b < a;
}

template <class Chunk>
auto firstNotOlder(Chunk& chunk, const EventPosition& position) {
    return std::lower_bound(
        chunk.begin(), chunk.end(), position,
        [](const auto& entry, const EventPosition& p) { return isOlder(entry.position, p); });
}

}  // namespace

EventSequence::Iterator EventSequence::at(std::size_t age) const {
    if (age >= count)
        return end();
    auto chunk = chunks.begin();
    if (age > count / 2) {
        std::size_t before = count;
        chunk = chunks.end();
        while (before > age)
            before -= (--chunk)->size();
        return {chunk, age - before};
    }
    for (; age >= chunk->size(); ++chunk)
        age -= chunk->size();
    return {chunk, age};
}

/// The first whose newest is not older than this; the last one when all are.
std::size_t EventSequence::chunkFor(const EventPosition& position) const {
    if (chunks.empty() || isOlder(chunks.back().front().position, position))
        return chunks.empty() ? 0 : chunks.size() - 1;
    const auto found = std::partition_point(chunks.begin(), chunks.end(), [&](const Chunk& chunk) {
        return isOlder(chunk.back().position, position);
    });
    return static_cast<std::size_t>(found - chunks.begin());
}

std::size_t EventSequence::countOlder(const EventPosition& position) const {
    if (chunks.empty())
        return 0;
    const std::size_t at = chunkFor(position);
    std::size_t older = 0;
    for (std::size_t chunk = 0; chunk < at; ++chunk)
        older += chunks[chunk].size();
    return older + static_cast<std::size_t>(firstNotOlder(chunks[at], position) -
                                            chunks[at].begin());
}

void EventSequence::insert(EventRecordPtr event) {
    const EventPosition position = event->position;
    std::size_t at = chunkFor(position);
    if (chunks.empty()) {
        chunks.emplace_back();
    } else if (chunks[at].size() == chunkSize) {
        const bool isNewest = isOlder(chunks[at].back().position, position);
        const std::size_t stay = isNewest ? chunkSize : chunkSize / 2;
        const auto middle = chunks[at].begin() + static_cast<std::ptrdiff_t>(stay);
        Chunk newer;
        newer.reserve(chunkSize);
        newer.assign(std::make_move_iterator(middle), std::make_move_iterator(chunks[at].end()));
        // Only the place for the chunk itself may be missing, and then the entries go back.
        try {
            chunks.insert(chunks.begin() + static_cast<std::ptrdiff_t>(at) + 1, Chunk());
        } catch (...) {
            std::move(newer.begin(), newer.end(), middle);
            throw;
        }
        chunks[at].resize(stay);
        chunks[at + 1] = std::move(newer);
        if (isNewest || isOlder(chunks[at].back().position, position))
            ++at;
    }
    Chunk& chunk = chunks[at];
    try {
        chunk.insert(firstNotOlder(chunk, position), Entry{position, std::move(event)});
    } catch (...) {
        if (chunk.empty())
            chunks.erase(chunks.begin() + static_cast<std::ptrdiff_t>(at));
        throw;
    }
    ++count;
}

void EventSequence::erase(const EventRecord& event) noexcept {
    std::size_t at = chunkFor(event.position);
    auto found = firstNotOlder(chunks[at], event.position);
    while (found == chunks[at].end() || found->event.get() != &event) {
        if (found == chunks[at].end())
            found = chunks[++at].begin();
        else
            ++found;
    }
    chunks[at].erase(found);
    --count;
    if (chunks[at].empty())
        chunks.erase(chunks.begin() + static_cast<std::ptrdiff_t>(at));
    else if (at + 1 < chunks.size())
        joinNext(at);
}

/// Two that have become small are one from then on.
void EventSequence::joinNext(std::size_t at) noexcept {
    Chunk& chunk = chunks[at];
    Chunk& next = chunks[at + 1];
    if (chunk.size() + next.size() > std::min(chunkSize / 2, chunk.capacity()))
        return;
    std::move(next.begin(), next.end(), std::back_inserter(chunk));
    chunks.erase(chunks.begin() + static_cast<std::ptrdiff_t>(at) + 1);
}

}  // namespace hmi
