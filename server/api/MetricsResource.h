#pragma once

#include "server/events/EventBook.h"
#include "server/extension/ExtensionCalls.h"
#include "server/http/Router.h"
#include "server/metrics/Metrics.h"
#include "server/metrics/PrometheusText.h"

namespace hmi {

/// /metrics: the server's own counters, and what the extension says of each target system.
class MetricsResource {
public:
    MetricsResource(const Metrics& metrics, const EventBook& book, ExtensionCalls& extension)
        : metrics(metrics), book(book), extension(extension) {}

    void addRoutes(Router& router);

private:
    Response read();
    void writeEvents(PrometheusText& text) const;
    void writeTargets(PrometheusText& text);

    const Metrics& metrics;
    const EventBook& book;
    ExtensionCalls& extension;
};

}  // namespace hmi
