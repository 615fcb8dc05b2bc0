#pragma once

#include "server/events/LogBook.h"
#include "server/http/Router.h"

namespace hmi {

/// /api/log: the messages that the extension wrote.
class LogResource {
public:
    explicit LogResource(const LogBook& book) : book(book) {}

    void addRoutes(Router& router);

private:
    Response read(const Request& request) const;

    const LogBook& book;
};

}  // namespace hmi
