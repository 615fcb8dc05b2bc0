#include "extension/Diagnostics.h"

#include <string>
#include <utility>

#include "targetsystem/proxy/ErrorText.h"

using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

namespace {

void addCounters(Value& entry, const EventStatistics& statistics) {
    const auto add = [&entry](const char* name, std::uint64_t count) {
        entry.insert(name, static_cast<int>(count));
    };
    add("importedEventsCount", statistics.importedEventsCount);
    add("importedAlarmsCount", statistics.importedEventsCount - statistics.importedMessagesCount);
    add("importedInvalidAlarmsCount", statistics.importedInvalidAlarmsCount);
    add("importedMessagesCount", statistics.importedMessagesCount);
    add("activeAlarmsCount", statistics.activeAlarmsCount);
    add("cachedAlarmsCount", statistics.cachedAlarmsCount);
    add("cachedInvalidAlarmsCount", statistics.cachedInvalidAlarmsCount);
    add("cachedMessagesCount", statistics.cachedMessagesCount);
}

void addProgress(Value& entry, const ImportProgress::Count& progress) {
    Value numbers(ValueType::structure);
    numbers.insert("done", static_cast<std::int64_t>(progress.done));
    numbers.insert("of", static_cast<std::int64_t>(progress.of));
    entry.insert("importProgress", std::move(numbers));
}

}  // namespace

Value diagnosticsOf(const TargetSystem& target) {
    Value entry(ValueType::structure);
    if (target.IsDisabled()) {
        entry.insert("connectionState", "Disabled");
        return entry;
    }
    const ConnectionState state = target.GetConnectionState();
    entry.insert("connectionState", state.connected ? "Good" : "Not Connected");
    if (state.connected) {
        addCounters(entry, target.statistics());
    } else if (const HRESULT error = state.connectError.value_or(S_OK); FAILED(error)) {
        entry.insert("connectError", ZrAtlCom::describe(error) + " (" +
                                         ZrAtlCom::hexText(error) + ")");
    }
    if (const auto progress = target.importProgress())
        addProgress(entry, *progress);
    return entry;
}

}  // namespace ZrHmiEventLogger
