#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "events/AlarmKey.h"
#include "events/EventStatistics.h"
#include "tests/events/InertAlarm.h"

/// The event store in its plainest form, which walks for everything: what the indexes are held
/// against.
struct PlainWalk {
    using EventKind = ZrHmiEventLogger::EventKind;
    struct Entry {
        std::string name;
        EventKind kind;
        std::optional<int> id;
        InertAlarm* alarm;  ///< null unless live
        ZrHmiEventLogger::AlarmKey alarmKey;
    };
    std::map<std::int64_t, std::vector<Entry>> groups;
    ZrHmiEventLogger::EventStatistics everInserted;
    std::vector<std::pair<std::int64_t, std::string>> evicted;

    void insert(std::int64_t key, const Entry& entry, std::int64_t limit) {
        groups[key].push_back(entry);
        ++everInserted.importedEventsCount;
        everInserted.importedMessagesCount += entry.kind == EventKind::message;
        everInserted.importedInvalidAlarmsCount += entry.kind == EventKind::invalidAlarm;
        enforceLimit(limit);
    }

    void enforceLimit(std::int64_t limit) {
        std::int64_t total = 0;
        auto group = groups.rbegin();
        for (; group != groups.rend() && total + std::ssize(group->second) < limit; ++group)
            total += std::ssize(group->second);
        for (std::int64_t kept = std::max<std::int64_t>(limit - total, 0); group != groups.rend();
             ++group, kept = 0)
            evictBehind(group->first, group->second, kept);
        std::erase_if(groups, [](const auto& emptied) { return emptied.second.empty(); });
    }

    void evictBehind(std::int64_t key, std::vector<Entry>& entries, std::int64_t kept) {
        for (auto entry = entries.begin() + kept; entry != entries.end();) {
            if (entry->alarm) {
                ++entry;
                continue;
            }
            evicted.emplace_back(key, entry->name);
            entry = entries.erase(entry);
        }
    }

    Entry* findFirst(const std::function<bool(std::int64_t key, const Entry&)>& matches) {
        for (auto& [key, entries] : groups)
            for (Entry& entry : entries)
                if (matches(key, entry))
                    return &entry;
        return nullptr;
    }

    void eraseIf(const std::function<bool(const Entry&)>& matches) {
        for (auto& group : groups)
            std::erase_if(group.second, matches);
        std::erase_if(groups, [](const auto& group) { return group.second.empty(); });
    }

    ZrHmiEventLogger::EventStatistics counters() const {
        ZrHmiEventLogger::EventStatistics result = everInserted;
        for (const auto& group : groups) {
            for (const Entry& entry : group.second) {
                ++(entry.alarm ? result.activeAlarmsCount : result.inactiveEventsCount);
                result.cachedMessagesCount += entry.kind == EventKind::message;
                result.cachedAlarmsCount += isAlarm(entry.kind);
                result.cachedInvalidAlarmsCount += entry.kind == EventKind::invalidAlarm;
            }
        }
        return result;
    }
};
