#pragma once

#include "server/config/ConfigurationStore.h"
#include "server/extension/ExtensionCalls.h"
#include "server/http/Router.h"

namespace hmi {

/// /api/config: reads and changes the extension's configuration while it runs.
class ConfigResource {
public:
    ConfigResource(ConfigurationStore& store, ExtensionCalls& extension)
        : store(store), extension(extension) {}

    void addRoutes(Router& router);

private:
    Response read(const Request& request) const;
    Response set(const Request& request);
    Response erase(const Request& request);
    Response change(const Request& request, std::optional<boost::json::value> value);
    ZrHmiSrv::ResultPair tell(const ConfigurationPath& path, bool deleted);

    ConfigurationStore& store;
    ExtensionCalls& extension;
};

}  // namespace hmi
