#include "simulator/plant/ActionReader.h"
#include "simulator/plant/EventReader.h"
#include "simulator/plant/Plant.h"

namespace ZrSimulator {

namespace {

constexpr ULONG maxLcid = 0xFFFFF;
constexpr ULONG maxEventId = 0xFFFFFFFF;

/// Two keys that are written differently may mean the same.
template <class Map, class Key, class Value>
void addOnce(Map& map, const Key& key, Value&& value, const JsonField& field) {
    if (!map.emplace(key, std::forward<Value>(value)).second)
        field.fail("given twice");
}

template <class Value, class Read>
std::vector<Value> readList(const JsonField& parent, std::string_view key, Read read) {
    std::vector<Value> values;
    if (const auto field = parent.find(key))
        field->forEachElement([&](const JsonField& element) { values.push_back(read(element)); });
    return values;
}

TextTable readText(const JsonField& field) {
    TextTable table;
    field.forEachMember([&](std::string_view lcid, const JsonField& text) {
        if (!table.add(readNumberKey(lcid, text, maxLcid), text.text()))
            text.fail("given twice");
    });
    return table;
}

TextTable readOptionalText(const JsonField& parent, std::string_view key) {
    const auto field = parent.find(key);
    return field ? readText(*field) : TextTable();
}

EventKind readKind(const JsonField& field) {
    const std::string kind = field.text();
    if (kind != "alarm" && kind != "message")
        field.fail("neither \"alarm\" nor \"message\"");
    return kind == "alarm" ? EventKind::alarm : EventKind::message;
}

CauseRemedy readCauseRemedy(const JsonField& field) {
    field.allowOnly({"id", "cause", "remedy"});
    return {field["id"].text(), readOptionalText(field, "cause"),
            readOptionalText(field, "remedy")};
}

Detail readDetail(const JsonField& field) {
    field.allowOnly({"key", "text", "comment"});
    return {field["key"].text(), readOptionalText(field, "text"),
            readOptionalText(field, "comment")};
}

EventDefinition readEventDefinition(const JsonField& field) {
    field.allowOnly({"kind", "severity", "confirm", "text", "causeRemedy", "details"});
    EventDefinition event;
    event.kind = readKind(field["kind"]);
    if (const auto severity = field.find("severity"))
        event.severity = static_cast<ULONG>(severity->integer(0, maxSeverity));
    if (const auto confirm = field.find("confirm"))
        event.confirm = confirm->flag();
    event.text = readOptionalText(field, "text");
    event.causeRemedy = readList<CauseRemedy>(field, "causeRemedy", readCauseRemedy);
    event.details = readList<Detail>(field, "details", readDetail);
    return event;
}

EventClass readEventClass(const JsonField& field) {
    field.allowOnly({"name", "events"});
    EventClass eventClass;
    eventClass.name = readOptionalText(field, "name");
    if (const auto events = field.find("events"))
        events->forEachMember([&](std::string_view id, const JsonField& event) {
            addOnce(eventClass.events, readNumberKey(id, event, maxEventId),
                    readEventDefinition(event), event);
        });
    return eventClass;
}

EventCatalog readCatalog(const JsonField& field) {
    EventCatalog catalog;
    if (const auto classes = field.find("eventClasses"))
        classes->forEachMember([&](std::string_view id, const JsonField& member) {
            addOnce(catalog.classes, readGuidKey(id, member), readEventClass(member), member);
        });
    if (const auto sources = field.find("sources"))
        sources->forEachMember([&](std::string_view name, const JsonField& translations) {
            catalog.sources.emplace(name, readText(translations));
        });
    return catalog;
}

EventRecord readLogged(const JsonField& field, const EventCatalog& catalog) {
    field.allowOnly({"class", "event", "timeRaised", "timeCleared", "timeConfirmed", "source",
                     "arguments", "json"});
    EventRecord record;
    record.content = readEvent(field, catalog, std::nullopt);
    record.raised = readTime(field["timeRaised"]);
    record.cleared = readOptionalTime(field, "timeCleared");
    record.confirmed = readOptionalTime(field, "timeConfirmed");
    return record;
}

/// A repeated timeline that takes no time would never let go of its runtime.
void checkRepeat(const JsonField& field, const RuntimeDefinition& runtime) {
    std::chrono::milliseconds length(0);
    for (const auto& step : runtime.timeline)
        length += step.after;
    if (runtime.repeat && length.count() == 0)
        field["repeat"].fail("a timeline that takes no time cannot be repeated");
}

RuntimeDefinition readRuntime(const JsonField& field) {
    field.allowOnly({"eventClasses", "sources", "logged", "timeline", "repeat", "instanceIds"});
    RuntimeDefinition runtime;
    runtime.catalog = readCatalog(field);
    runtime.logged = readList<EventRecord>(field, "logged", [&](const JsonField& logged) {
        return readLogged(logged, runtime.catalog);
    });
    runtime.timeline = readList<TimelineStep>(field, "timeline", [&](const JsonField& step) {
        return readTimelineStep(step, runtime.catalog);
    });
    if (const auto repeat = field.find("repeat"))
        runtime.repeat = repeat->flag();
    checkRepeat(field, runtime);
    if (const auto instanceIds = field.find("instanceIds"))
        runtime.instanceIds = instanceIds->flag();
    return runtime;
}

FnxNetId readNetId(std::string_view text, const JsonField& field) {
    const auto netId = parseNetId(text);
    if (!netId)
        field.fail("not a net id: six numbers from 0 to 255 with points between");
    return *netId;
}

}  // namespace

Plant readPlant(std::string_view text) {
    const auto document = parseJson(text);
    const JsonField field(document);
    field.allowOnly({"localNetId", "runtimes"});
    Plant plant;
    if (const auto local = field.find("localNetId"))
        plant.localNetId = readNetId(local->text(), *local);
    if (const auto runtimes = field.find("runtimes"))
        runtimes->forEachMember([&](std::string_view netId, const JsonField& runtime) {
            addOnce(plant.runtimes, readNetId(netId, runtime), readRuntime(runtime), runtime);
        });
    return plant;
}

}  // namespace ZrSimulator
