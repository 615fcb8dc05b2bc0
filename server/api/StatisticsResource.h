#pragma once

#include "server/http/Router.h"
#include "server/statistics/StatisticsReport.h"
#include "server/texts/EventTextService.h"

namespace hmi {

/// /api/statistics: how the alarms have behaved.
class StatisticsResource {
public:
    StatisticsResource(const RaiseBook& raises, const EventBook& book, const TargetBook& targets,
                       EventTextService& texts)
        : raises(raises), book(book), targets(targets), texts(texts) {}

    void addRoutes(Router& router);

private:
    Response read(const Request& request);

    const RaiseBook& raises;
    const EventBook& book;
    const TargetBook& targets;
    EventTextService& texts;
};

}  // namespace hmi
