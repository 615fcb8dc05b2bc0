#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "simulator/plant/EventContent.h"

namespace ZrSimulator {

/// The history of one runtime, by time raised and then in order of arrival. Forgets the oldest
/// entries when it has a million. Not synchronised.
class EventLog {
public:
    /// Names an entry for as long as the log lives.
    using Key = std::pair<FileTime, std::uint64_t>;

    Key add(EventRecord record);
    /// Changes an entry, unless it is gone.
    void update(const Key& key, const EventRecord& record);
    void erase(const Key& key) { entries.erase(key); }
    void clear() { entries.clear(); }

    std::size_t size() const { return entries.size(); }
    /// Oldest first.
    std::vector<EventRecord> newest(std::size_t count) const;

private:
    static constexpr std::size_t maxEntries = 1'000'000;

    std::map<Key, EventRecord> entries;
    std::uint64_t arrivals = 0;
};

}  // namespace ZrSimulator
