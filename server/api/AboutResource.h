#pragma once

#include <atomic>

#include "server/http/Router.h"

namespace hmi {

/// What the server says of itself: /healthz, /readyz, /api/version, /api/openapi.json.
class AboutResource {
public:
    void addRoutes(Router& router);
    /// Whether the extension has started, and not yet been stopped. Any thread.
    void setReady(bool is) noexcept { ready = is; }

private:
    std::atomic<bool> ready = false;
};

}  // namespace hmi
