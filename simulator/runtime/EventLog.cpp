#include "simulator/runtime/EventLog.h"

#include <algorithm>
#include <iterator>

namespace ZrSimulator {

EventLog::Key EventLog::add(EventRecord record) {
    const Key key{record.raised, ++arrivals};
    entries.emplace_hint(entries.end(), key, std::move(record));
    if (entries.size() > maxEntries)
        entries.erase(entries.begin());
    return key;
}

void EventLog::update(const Key& key, const EventRecord& record) {
    if (const auto found = entries.find(key); found != entries.end())
        found->second = record;
}

std::vector<EventRecord> EventLog::newest(std::size_t count) const {
    std::vector<EventRecord> records;
    count = std::min(count, entries.size());
    records.reserve(count);
    const auto begin = std::prev(entries.end(), static_cast<std::ptrdiff_t>(count));
    std::transform(begin, entries.end(), std::back_inserter(records),
                   [](const auto& entry) { return entry.second; });
    return records;
}

}  // namespace ZrSimulator
