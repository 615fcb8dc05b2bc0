#pragma once

#include <memory>
#include <optional>
#include <string>

#include "simulator/plant/Arguments.h"
#include "simulator/plant/EventCatalog.h"
#include "simulator/plant/FileTime.h"

namespace ZrSimulator {

/// Where an event comes from; every part is optional.
struct EventSource {
    std::optional<ULONG> id;
    std::optional<GUID> guid;
    std::optional<std::string> name;
};

/// What an event says, apart from its times.
struct EventContent {
    EventKind kind = EventKind::message;
    GUID eventClass{};
    ULONG eventId = 0;
    ULONG severity = 1;
    bool requiresConfirmation = false;
    EventSource source;
    Arguments arguments;
    ArgumentBlock block;  ///< the same arguments
    std::optional<std::string> json;
};

/// An event as it is at one moment. Copies share the content.
struct EventRecord {
    std::shared_ptr<const EventContent> content;
    ULONG instanceId = 0;  ///< 0: none
    FileTime raised = 0;
    FileTime cleared = 0;
    FileTime confirmed = 0;
    bool live = false;  ///< stands in the list of active alarms
};

}  // namespace ZrSimulator
