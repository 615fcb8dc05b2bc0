#pragma once

#include <map>
#include <string>
#include <vector>

#include "simulator/plant/TextTable.h"

namespace ZrSimulator {

enum class EventKind { message, alarm };

struct CauseRemedy {
    std::string id;
    TextTable cause;
    TextTable remedy;
};

struct Detail {
    std::string key;
    TextTable text;
    TextTable comment;
};

/// What the engineer has defined for an event. "{0}", "{1}" ... in its text stand for arguments.
struct EventDefinition {
    EventKind kind = EventKind::message;
    ULONG severity = 1;
    bool confirm = false;
    TextTable text;
    std::vector<CauseRemedy> causeRemedy;
    std::vector<Detail> details;
};

struct EventClass {
    TextTable name;
    std::map<ULONG, EventDefinition> events;
};

/// The events that a runtime knows and its texts; does not change while the runtime lives.
struct EventCatalog {
    const EventClass* findClass(const GUID& id) const;
    const EventDefinition* findEvent(const GUID& eventClass, ULONG eventId) const;
    /// Null when the name has no translation into this language.
    const std::string* findSource(const std::string& name, LCID lcid) const;

    std::map<GUID, EventClass> classes;
    std::map<std::string, TextTable> sources;
};

}  // namespace ZrSimulator
