#include "server/api/HistoryCsv.h"

#include <array>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

#include "server/csv/CsvRow.h"
#include "server/json/IsoTime.h"

namespace hmi {

namespace json = boost::json;

namespace {

/// Those that come from the event itself, by their names there.
constexpr std::array ofEvent{"kind", "severity", "timeRaised", "timeCleared", "timeConfirmed",
                             "name"};
constexpr std::array ofParameters{"eventClass", "eventId", "sourceName"};
/// Of a gap, and of what somebody did.
constexpr std::array ofOthers{"from", "to", "reason", "lost", "peer", "status", "answer"};

std::string textOf(const json::object& object, const char* name) {
    const json::value* const value = object.if_contains(name);
    if (!value || value->is_null())
        return {};
    return value->is_string() ? std::string(value->get_string()) : json::serialize(*value);
}

}  // namespace

std::string historyCsvHead() {
    CsvRow row;
    for (const char* name : {"seq", "at", "station", "change", "target", "occurrence", "text", "by",
                             "comment"})
        row.add(name);
    for (const char* name : ofEvent)
        row.add(name);
    for (const char* name : ofParameters)
        row.add(name);
    for (const char* name : ofOthers)
        row.add(name);
    return std::move(row).text();
}

std::string historyCsvRow(const HistoryEntry& entry) {
    json::error_code error;
    const json::value parsed = json::parse(entry.event, error);
    const json::object event = parsed.is_object() ? parsed.get_object() : json::object();
    const json::value* const found = event.if_contains("parameters");
    const json::object parameters =
        found && found->is_object() ? found->get_object() : json::object();
    CsvRow row;
    row.add(static_cast<std::uint64_t>(entry.sequence)).add(isoTime(entry.at));
    row.add(entry.station).add(nameOf(entry.change)).add(entry.target);
    row.add(entry.occurrence ? std::to_string(*entry.occurrence) : std::string());
    row.add(entry.text.value_or("")).add(entry.by).add(entry.comment);
    for (const char* name : ofEvent)
        row.add(textOf(event, name));
    for (const char* name : ofParameters)
        row.add(textOf(parameters, name));
    for (const char* name : ofOthers)
        row.add(textOf(event, name));
    return std::move(row).text();
}

}  // namespace hmi
