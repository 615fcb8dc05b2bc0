#pragma once

#include "server/events/ChangeFeed.h"
#include "server/events/EventBook.h"
#include "server/extension/ExtensionCalls.h"
#include "server/history/History.h"
#include "server/http/Router.h"
#include "server/lanes/WorkerLanes.h"
#include "server/metrics/Metrics.h"
#include "server/metrics/PrometheusText.h"
#include "server/texts/EventTextService.h"

namespace hmi {

/// /metrics: the server's own counters, and what the extension says of each target system.
class MetricsResource {
public:
    MetricsResource(const Metrics& metrics, const EventBook& book, ExtensionCalls& extension,
                    const ChangeFeed& feed, const WorkerLanes& lanes, const EventTextService& texts,
                    const IHistory* history)
        : metrics(metrics),
          book(book),
          extension(extension),
          feed(feed),
          lanes(lanes),
          texts(texts),
          history(history) {}

    void addRoutes(Router& router);

private:
    Response read();
    void writeEvents(PrometheusText& text) const;
    void writeTargets(PrometheusText& text);
    void writeFeed(PrometheusText& text) const;

    const Metrics& metrics;
    const EventBook& book;
    ExtensionCalls& extension;
    const ChangeFeed& feed;
    const WorkerLanes& lanes;
    const EventTextService& texts;
    const IHistory* const history;  ///< null: none is kept
};

}  // namespace hmi
