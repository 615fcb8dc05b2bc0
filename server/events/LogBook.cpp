#include "server/events/LogBook.h"

#include <algorithm>

#include "server/json/Utf8.h"

namespace hmi {

void LogBook::add(ZrHmiSrv::Message message) {
    auto entry = std::make_shared<LogEntry>(LogEntry{0, std::move(message)});
    std::shared_ptr<const LogEntry> oldest;  // freed outside the lock
    Lock lock(mutex);
    entry->sequence = next++;
    if (entries.full())
        oldest = entries.front();
    entries.push_back(entry);
    sink.post({.type = ChangeType::log, .entry = std::move(entry)});
}

std::optional<std::string> importedTarget(const ZrHmiSrv::Message& entry) {
    if (entry.name().view() != "LOGGED_EVENTS_IMPORTED")
        return std::nullopt;
    const ZrHmiSrv::Value* const target = entry.parameters().lookup("0");
    if (!target || target->type() != ZrHmiSrv::ValueType::string)
        return std::nullopt;
    return toValidUtf8(target->get_string());
}

LogBook::Page LogBook::read(std::uint64_t since, std::size_t limit) const {
    Lock lock(mutex);
    const std::uint64_t first = next - entries.size();
    const std::uint64_t from = std::clamp(since, first, next);
    const std::uint64_t to = from + std::min<std::uint64_t>(limit, next - from);
    Page page{to, {}};
    page.entries.reserve(static_cast<std::size_t>(to - from));
    for (std::uint64_t sequence = from; sequence < to; ++sequence)
        page.entries.push_back(entries[static_cast<std::size_t>(sequence - first)]);
    return page;
}

}  // namespace hmi
