#include "server/api/EventsCsv.h"

#include <array>
#include <cstdint>

#include "server/csv/CsvRow.h"
#include "server/events/EventOrigin.h"
#include "server/json/IsoTime.h"
#include "server/json/TargetJson.h"

namespace hmi {

using ZrHmiSrv::Alarm;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

constexpr std::array columns{"kind",          "id",
                             "target",        "severity",
                             "state",         "confirmation",
                             "timeRaised",    "timeCleared",
                             "timeConfirmed", "timeReceived",
                             "text",          "eventClassName",
                             "sourceName",    "localizedSourceName",
                             "name",          "eventClass",
                             "eventId",       "askedBy",
                             "askedAt",       "comment",
                             "lastKnownSince"};

std::string timeText(Timestamp time) {
    return time.isset() ? isoTime(time) : std::string();
}

const char* stateOf(const EventRecord& event) {
    switch (event.life) {
        case EventLife::active:
            return "active";
        case EventLife::cleared:
            return "cleared";
        case EventLife::other:
            break;
    }
    return event.kind == EventKind::message ? "" : event.ended ? "ended" : "unknown";
}

const char* confirmationOf(const EventRecord& event) {
    constexpr std::array names{"", "not required", "pending", "confirmed", "lapsed"};
    const auto state =
        event.alarm() ? static_cast<std::size_t>(event.alarm()->confirmation_state()) : 0;
    return state < names.size() ? names[state] : "";
}

std::string textOf(const EventTexts* texts, const char* name) {
    const Value* const value = texts ? texts->parameters.lookup(name) : nullptr;
    return value && value->type() == ValueType::string ? std::string(value->get_text().view())
                                                       : std::string();
}

std::string gapRow(const Gap& gap) {
    CsvRow row;
    row.add("gap").add("").add(gap.target).add("").add("").add("");
    row.add(timeText(gap.from)).add(timeText(gap.to)).add("").add("");
    std::string text(nameOf(gap.reason));
    if (gap.lost)
        text += ": " + std::to_string(*gap.lost) + " lost";
    row.add(text);
    for (std::size_t column = 11; column < columns.size(); ++column)
        row.add("");
    return std::move(row).text();
}

}  // namespace

std::string csvHead() {
    CsvRow row;
    for (const char* const column : columns)
        row.add(column);
    return std::move(row).text();
}

std::string csvRow(const EventSearch::Hit& hit) {
    if (hit.gap)
        return gapRow(*hit.gap);
    const EventRecord& event = *hit.event;
    const EventOrigin origin = originOf(event);
    const Alarm unset;
    const Alarm& alarm = event.alarm() ? *event.alarm() : unset;
    const Timestamp raised =
        std::visit([](const auto& content) { return content.time_raised(); }, event.content.event);
    const EventTexts* const texts =
        hit.texts && hit.texts->result == ErrorValue::success ? hit.texts.get() : nullptr;
    const Confirmation unasked;
    const Confirmation& asked = event.confirmation ? *event.confirmation : unasked;

    CsvRow row;
    row.add(event.kind == EventKind::alarm ? "alarm" : "message").add(event.id.text());
    row.add(origin.target);
    event.severity == noSeverity ? row.add("") : row.add(std::uint64_t{event.severity});
    row.add(stateOf(event)).add(confirmationOf(event));
    row.add(timeText(raised)).add(timeText(alarm.time_cleared()));
    row.add(timeText(alarm.time_confirmed())).add(timeText(event.position.time));
    row.add(texts ? texts->text.view() : std::string_view());
    row.add(textOf(texts, "eventClassName")).add(origin.sourceName);
    row.add(textOf(texts, "localizedSourceName")).add(origin.name).add(origin.eventClass);
    origin.eventId ? row.add(std::uint64_t{*origin.eventId}) : row.add("");
    row.add(asked.by).add(timeText(asked.at)).add(asked.comment);
    row.add(timeText(event.lastKnownSince));
    return std::move(row).text();
}

}  // namespace hmi
