#include "simulator/runtime/EventLedger.h"

#include <algorithm>
#include <tuple>

namespace ZrSimulator {

EventLedger::EventLedger(std::vector<EventRecord> logged, bool instanceIds)
    : instanceIds(instanceIds) {
    for (auto& record : logged) {
        record.instanceId = nextInstanceId();
        log.add(std::move(record));
    }
}

FileTime EventLedger::takeTimes(std::uint32_t count) {
    const FileTime first = std::max(currentTime(), lastTime + 1);
    lastTime = first + count - 1;
    return first;
}

Ref<Alarm> EventLedger::raise(const std::string& name, std::shared_ptr<const EventContent> content,
                              FileTime time, const AlarmOrigin& origin) {
    EventRecord record;
    record.content = std::move(content);
    record.raised = time;
    record.live = true;
    Entry& entry = alarms[name];
    if (entry.alarm) {
        record.instanceId = entry.alarm->record().instanceId;
        entry.alarm->update(record);
        log.erase(entry.logged);
    } else {
        record.instanceId = nextInstanceId();
        entry.alarm = new Alarm(origin.border, origin.runtime, name, record);
    }
    entry.logged = log.add(std::move(record));
    return entry.alarm;
}

std::optional<EventLedger::Change> EventLedger::clear(const std::string& name, FileTime time) {
    const auto found = alarms.find(name);
    if (found == alarms.end() || !found->second.alarm)
        return std::nullopt;
    EventRecord record = found->second.alarm->record();
    if (record.cleared != 0)
        return std::nullopt;
    record.cleared = time;
    return update(found->second, std::move(record));
}

std::optional<EventLedger::Change> EventLedger::confirm(const std::string& name, FileTime time) {
    const auto found = alarms.find(name);
    if (found == alarms.end() || !found->second.alarm)
        return std::nullopt;
    EventRecord record = found->second.alarm->record();
    if (!record.content->requiresConfirmation || record.confirmed != 0)
        return std::nullopt;
    record.confirmed = time;
    return update(found->second, std::move(record));
}

EventRecord EventLedger::addMessage(std::shared_ptr<const EventContent> content, FileTime time) {
    EventRecord record;
    record.content = std::move(content);
    record.instanceId = nextInstanceId();
    record.raised = time;
    log.add(record);
    return record;
}

Ref<Alarm> EventLedger::find(const std::string& name) const {
    const auto found = alarms.find(name);
    return found == alarms.end() ? nullptr : found->second.alarm;
}

std::vector<Ref<Alarm>> EventLedger::liveAlarms() const {
    std::vector<std::tuple<FileTime, ULONG, Ref<Alarm>>> ordered;
    for (const auto& [name, entry] : alarms) {
        if (entry.alarm) {
            const EventRecord record = entry.alarm->record();
            ordered.emplace_back(record.raised, record.instanceId, entry.alarm);
        }
    }
    std::sort(ordered.begin(), ordered.end());
    std::vector<Ref<Alarm>> live;
    live.reserve(ordered.size());
    for (auto& entry : ordered)
        live.push_back(std::move(std::get<2>(entry)));
    return live;
}

EventLedger::Change EventLedger::update(Entry& entry, EventRecord record) {
    const bool waits = record.content->requiresConfirmation && record.confirmed == 0;
    record.live = record.cleared == 0 || waits;
    entry.alarm->update(record);
    log.update(entry.logged, record);
    const Change change{entry.alarm, !record.live};
    if (change.removed)
        entry.alarm.reset();
    return change;
}

}  // namespace ZrSimulator
