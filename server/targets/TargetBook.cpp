#include "server/targets/TargetBook.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

#include "server/json/Utf8.h"

namespace hmi {

using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

double numberOf(const Value& parameters, const char* name) {
    const Value* const value = parameters.lookup(name);
    return value && value->is_number() ? static_cast<double>(*value) : 0;
}

std::uint64_t countOf(const Value& parameters, const char* name) {
    return static_cast<std::uint64_t>(std::max(0.0, numberOf(parameters, name)));
}

std::string textOf(const Value& parameters, const char* name) {
    const Value* const value = parameters.lookup(name);
    return value && value->type() == ValueType::string ? toValidUtf8(value->get_string())
                                                       : std::string();
}

/// "a text (0x80004005)"
TargetStatus::Error errorOf(const std::string& text) {
    const std::size_t open = text.rfind(" (0x");
    if (open == std::string::npos || text.back() != ')')
        return {{}, text};
    return {text.substr(open + 2, text.size() - open - 3), text.substr(0, open)};
}

Value countersOf(const Value& diagnosed) {
    Value counters(ValueType::structure);
    for (auto field = diagnosed.begin(); field != diagnosed.end(); ++field) {
        if (field->is_number())
            counters.insert(field.name(), *field);
    }
    return counters;
}

std::optional<TargetProgress> progressOf(const Value& diagnosed) {
    const Value* const progress = diagnosed.lookup("importProgress");
    if (!progress || !progress->is_map())
        return std::nullopt;
    return TargetProgress{countOf(*progress, "done"), countOf(*progress, "of")};
}

}  // namespace

bool TargetBook::post(const Change& change) noexcept try {
    if (change.entry)
        onLog(change.entry->message);
    const bool isNew = change.type == ChangeType::raised || change.type == ChangeType::message;
    if (isNew || change.type == ChangeType::updated || change.type == ChangeType::removed)
        onEvent(*change.event, isNew);
    return true;
} catch (const std::exception&) {
    return false;
}

void TargetBook::onEvent(const EventRecord& event, bool isNew) {
    Lock lock(mutex);
    Entry* const entry = find(event.target);
    if (!entry)
        return;
    const Timestamp now = Timestamp::now();
    entry->status.lastNotification = now;
    if (!isNew)
        return;
    const Timestamp raised =
        std::visit([](const auto& content) { return content.time_raised(); }, event.content.event);
    entry->status.clockSkewMilliseconds =
        raised.nanoseconds() / 1'000'000 - now.nanoseconds() / 1'000'000;
}

void TargetBook::onLog(const ZrHmiSrv::Message& message) {
    const auto name = message.name().view();
    const Value& parameters = message.parameters();
    const std::string target = textOf(parameters, "0");
    if (target.empty())
        return;
    Lock lock(mutex);
    if (name == "TARGET_SYSTEM_CONNECTED" || name == "LOGGED_EVENTS_IMPORTED" ||
        name == "TARGET_SYSTEM_CONNECT_FAILED") {
        Entry* const entry = findOrAdd(target);
        if (!entry)
            return;
        ++entry->version;
        if (name == "TARGET_SYSTEM_CONNECTED")
            onConnected(*entry);
        else if (name == "LOGGED_EVENTS_IMPORTED")
            onImported(*entry, parameters);
        else
            onConnectFailed(*entry, textOf(parameters, "1"));
        return;
    }
    Entry* const entry = find(target);
    if (!entry)
        return;
    if (name == "FORGET_EVENT") {
        onForgotten(*entry, parameters);
    } else if (name == "DATABASE_CHANGED") {
        gapBook.open(target, Timestamp::now(), GapReason::databaseChanged);
    } else if (name == "CORVANE_EVENTLOGGER_ERROR") {
        ++entry->version;
        // Of a loss diagnostics tell a moment later.
        entry->doubts = 2;
    }
}

void TargetBook::onConnected(Entry& entry) {
    if (entry.status.state == TargetState::good) {  // it was lost for a moment
        gapBook.open(entry.status.name, entry.wellAt, GapReason::disconnected);
        enter(entry, TargetState::lost);
    }
    entry.status.error.reset();
    enter(entry, TargetState::importing);
}

void TargetBook::onImported(Entry& entry, const Value& parameters) {
    const Timestamp now = Timestamp::now();
    TargetStatus& status = entry.status;
    status.import = TargetImport{countOf(parameters, "1"),  now,
                                 numberOf(parameters, "6"), countOf(parameters, "2"),
                                 countOf(parameters, "3"),  countOf(parameters, "4"),
                                 countOf(parameters, "5"),  countOf(parameters, "7")};
    status.rejected += status.import->rejected;
    status.error.reset();
    entry.doubts = 0;
    entry.wellAt = now;
    gapBook.close(status.name, now);
    if (status.import->rejected > 0)
        gapBook.addRejected(status.name, now, status.import->rejected);
    enter(entry, TargetState::good);
    entry.changed = true;
}

void TargetBook::onConnectFailed(Entry& entry, const std::string& hresult) {
    if (!entry.status.error || entry.status.error->hresult != hresult)
        entry.status.error = TargetStatus::Error{hresult, hresult};
    lose(entry);
}

void TargetBook::onForgotten(Entry& entry, const Value& parameters) {
    ++entry.status.forgotten;
    entry.changed = true;
    const Value* const time = parameters.lookup("1");
    if (time && time->type() == ValueType::timestamp)
        gapBook.addForgotten(entry.status.name, time->get_timestamp());
}

void TargetBook::lose(Entry& entry) {
    if (entry.status.import && entry.status.state != TargetState::lost)
        gapBook.open(entry.status.name, entry.wellAt, GapReason::disconnected);
    enter(entry, TargetState::lost);
}

void TargetBook::enter(Entry& entry, TargetState state) {
    if (entry.status.state == state && entry.status.since.isset())
        return;
    const bool isNew = !entry.status.since.isset();
    entry.status.state = state;
    entry.status.progress.reset();
    entry.status.since = Timestamp::now();
    entry.changed = true;
    if (isNew || lines.size() >= maxLines)
        return;
    const bool isTrouble = state == TargetState::lost && entry.status.error;
    lines.push_back(entry.status.name + ": " + std::string(nameOf(state)) +
                    (isTrouble ? ", " + entry.status.error->text : ""));
}

TargetBook::Entry* TargetBook::find(const std::string& target) {
    const auto found = entries.find(target);
    return found == entries.end() ? nullptr : &found->second;
}

/// Null when there are too many.
TargetBook::Entry* TargetBook::findOrAdd(const std::string& target) {
    Entry* const found = find(target);
    if (found || entries.size() >= maxTargets)
        return found;
    Entry& entry = entries[target];
    entry.status.name = target;
    enter(entry, TargetState::connecting);
    return &entry;
}

TargetBook::Versions TargetBook::versions() const {
    Lock lock(mutex);
    Versions versions;
    for (const auto& [name, entry] : entries)
        versions.emplace(name, entry.version);
    return versions;
}

std::vector<std::string> TargetBook::observe(const Value& diagnostics, const Versions& before,
                                             const std::map<std::string, std::string>& addresses) {
    std::vector<std::string> well;
    Lock lock(mutex);
    for (const auto& [name, version] : before) {
        if (diagnostics.lookup(name.c_str()))
            continue;
        entries.erase(name);
        gapBook.close(name, Timestamp::now());  // nobody waits for what may be missing
    }
    for (auto diagnosed = diagnostics.begin(); diagnosed != diagnostics.end(); ++diagnosed) {
        const std::string name = toValidUtf8(diagnosed.name());
        Entry* const entry = findOrAdd(name);
        if (!entry)
            continue;
        const auto address = addresses.find(name);
        entry->status.address = address == addresses.end() ? std::string() : address->second;
        const auto known = before.find(name);
        const std::uint64_t version = known == before.end() ? 0 : known->second;
        if (entry->version == version && onDiagnosed(*entry, *diagnosed))
            well.push_back(name);
    }
    return well;
}

/// True when a doubt has come to nothing.
bool TargetBook::onDiagnosed(Entry& entry, const Value& diagnosed) {
    const std::string state = textOf(diagnosed, "connectionState");
    TargetStatus& status = entry.status;
    status.counters = countersOf(diagnosed);
    if (state == "Disabled") {
        enter(entry, TargetState::disabled);
    } else if (state == "Not Connected") {
        const std::string error = textOf(diagnosed, "connectError");
        if (!error.empty() && (!status.error || status.error->text != errorOf(error).text)) {
            status.error = errorOf(error);
            entry.changed = true;
        }
        if (status.import || status.error)
            lose(entry);
        else
            enter(entry, TargetState::connecting);
    } else if (status.state == TargetState::good) {
        entry.wellAt = Timestamp::now();
        return entry.doubts > 0 && --entry.doubts == 0;
    } else {
        status.error.reset();
        enter(entry, TargetState::importing);
        const auto progress = progressOf(diagnosed);
        entry.changed |= progress != status.progress;
        status.progress = progress;
    }
    return false;
}

bool TargetBook::isImported(const std::string& target) const {
    Lock lock(mutex);
    const auto found = entries.find(target);
    return found == entries.end() || found->second.status.state == TargetState::disabled ||
           (found->second.status.state == TargetState::good && found->second.doubts == 0);
}

std::vector<std::shared_ptr<const TargetStatus>> TargetBook::all() const {
    std::vector<std::shared_ptr<const TargetStatus>> targets;
    Lock lock(mutex);
    for (const auto& [name, entry] : entries)
        targets.push_back(std::make_shared<const TargetStatus>(entry.status));
    return targets;
}

std::vector<GapPtr> TargetBook::gaps(const std::optional<std::string>& target,
                                     const std::optional<Timestamp>& from,
                                     const std::optional<Timestamp>& to) const {
    Lock lock(mutex);
    return gapBook.select(target, from, to);
}

std::vector<std::string> TargetBook::takeLines() {
    Lock lock(mutex);
    return std::exchange(lines, {});
}

std::vector<Change> TargetBook::takeNews() {
    std::vector<Change> news;
    Lock lock(mutex);
    for (auto& [name, entry] : entries) {
        if (std::exchange(entry.changed, false))
            news.push_back({.type = ChangeType::target,
                            .target = std::make_shared<const TargetStatus>(entry.status)});
    }
    for (GapPtr& gap : gapBook.takeChanged())
        news.push_back({.type = ChangeType::gap, .gap = std::move(gap)});
    return news;
}

}  // namespace hmi
