#pragma once

#include "server/history/History.h"
#include "server/history/HistoryQuery.h"
#include "server/http/Router.h"
#include "server/users/AccessControl.h"

namespace hmi {

/// /api/history: what has happened, as the history keeps it.
class HistoryResource {
public:
    /// Null: none is kept.
    HistoryResource(IHistory* history, const AccessControl& access)
        : history(history), access(access) {}

    void addRoutes(Router& router);

private:
    Response list(const Request& request);
    Response table(const Request& request);
    Response state(const Request& request);
    IHistory& kept() const;
    HistoryQuery queryOf(const Request& request) const;

    IHistory* const history;
    const AccessControl& access;
};

}  // namespace hmi
