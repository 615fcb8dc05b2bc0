#pragma once

#include <string>

#include "server/events/EventBook.h"
#include "server/extension/ExtensionCalls.h"
#include "server/http/Router.h"
#include "server/metrics/Metrics.h"
#include "server/texts/EventTextService.h"

namespace hmi {

/// /api/events: the list, one event, and its confirmation.
class EventsResource {
public:
    EventsResource(EventBook& book, ExtensionCalls& extension, EventTextService& texts,
                   Metrics& metrics)
        : book(book), extension(extension), texts(texts), metrics(metrics) {}

    void addRoutes(Router& router);

private:
    Response list(const Request& request);
    Response one(const Request& request);
    Response confirm(const Request& request);
    EventRecordPtr find(const Request& request) const;

    EventBook& book;
    ExtensionCalls& extension;
    EventTextService& texts;
    Metrics& metrics;
};

}  // namespace hmi
