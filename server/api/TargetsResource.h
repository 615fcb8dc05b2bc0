#pragma once

#include "server/http/Router.h"
#include "server/targets/TargetBook.h"

namespace hmi {

/// /api/targets: what is known of each target system. No runtime is asked.
class TargetsResource {
public:
    explicit TargetsResource(const TargetBook& book) : book(book) {}

    void addRoutes(Router& router);

private:
    const TargetBook& book;
};

}  // namespace hmi
