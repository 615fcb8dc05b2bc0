#pragma once

#include "server/http/Router.h"

namespace hmi {

/// The operator page and its parts, which are built into the program.
class PageResource {
public:
    static void addRoutes(Router& router);
};

}  // namespace hmi
