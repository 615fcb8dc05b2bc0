#include "server/api/AboutResource.h"

#include "server/Version.h"

namespace hmi {

void AboutResource::addRoutes(Router& router) {
    router.add(Method::get, "/healthz", Lane::local,
               [](const Request&) { return Response::json({{"status", "alive"}}); });
    router.add(Method::get, "/readyz", Lane::local, [this](const Request&) {
        return ready ? Response::json({{"status", "ready"}})
                     : Response::error(503, "the extension has not started");
    });
    router.add(Method::get, "/api/version", Lane::local, [](const Request&) {
        return Response::json({{"name", "hmi-server"}, {"version", version}, {"build", build}});
    });
}

}  // namespace hmi
