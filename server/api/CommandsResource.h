#pragma once

#include "server/extension/ExtensionCalls.h"
#include "server/http/Router.h"

namespace hmi {

/// /api/commands: hands requests of clients to the extension.
class CommandsResource {
public:
    explicit CommandsResource(ExtensionCalls& extension) : extension(extension) {}

    void addRoutes(Router& router);

private:
    Response handle(const Request& request);

    ExtensionCalls& extension;
};

}  // namespace hmi
