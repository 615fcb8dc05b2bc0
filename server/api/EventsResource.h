#pragma once

#include <string>

#include "server/api/EventSearch.h"
#include "server/events/EventBook.h"
#include "server/extension/ExtensionCalls.h"
#include "server/http/Router.h"
#include "server/json/EventJson.h"
#include "server/targets/TargetBook.h"
#include "server/texts/EventTextService.h"

namespace hmi {

/// /api/events: the list, the same as a table, and one event.
class EventsResource {
public:
    EventsResource(const EventBook& book, const TargetBook& targets, ExtensionCalls& extension,
                   EventTextService& texts)
        : book(book), targets(targets), extension(extension), texts(texts) {}

    void addRoutes(Router& router);

private:
    Response list(const Request& request);
    Response grouped(const EventSearch& search, const EventQuery& asked, Extent extent,
                     const std::string& counts);
    Response table(const Request& request);
    Response one(const Request& request);
    EventRecordPtr find(const Request& request) const;

    const EventBook& book;
    const TargetBook& targets;
    ExtensionCalls& extension;
    EventTextService& texts;
    SearchTexts searchTexts;
};

}  // namespace hmi
