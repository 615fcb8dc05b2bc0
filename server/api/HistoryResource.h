#pragma once

#include "server/history/History.h"
#include "server/http/Router.h"

namespace hmi {

/// /api/history: what has happened, as the history keeps it.
class HistoryResource {
public:
    /// Null: none is kept.
    explicit HistoryResource(IHistory* history) : history(history) {}

    void addRoutes(Router& router);

private:
    Response list(const Request& request);
    Response table(const Request& request);
    Response state(const Request& request);
    IHistory& kept() const;

    IHistory* const history;
};

}  // namespace hmi
