#pragma once

#include <string>

#include "server/events/EventBook.h"
#include "server/extension/ExtensionCalls.h"
#include "server/http/Router.h"
#include "server/targets/TargetBook.h"
#include "server/texts/EventTextService.h"

namespace hmi {

/// /api/events: the list, and one event.
class EventsResource {
public:
    EventsResource(const EventBook& book, const TargetBook& targets, ExtensionCalls& extension,
                   EventTextService& texts)
        : book(book), targets(targets), extension(extension), texts(texts) {}

    void addRoutes(Router& router);

private:
    Response list(const Request& request);
    Response one(const Request& request);
    EventRecordPtr find(const Request& request) const;

    const EventBook& book;
    const TargetBook& targets;
    ExtensionCalls& extension;
    EventTextService& texts;
};

}  // namespace hmi
