#include "server/api/AboutResource.h"

#include "server/Version.h"
#include "server/api/PageFiles.h"
#include "server/json/ParseJson.h"

namespace hmi {

namespace {

/// As it stands in the source, with the version of this build.
Response description() {
    boost::json::value document = parseJson(descriptionFile.front().content);
    document.at("info").at("version") = version;
    Response response = Response::json(document);
    response.keepable = true;
    return response;
}

}  // namespace

void AboutResource::addRoutes(Router& router) {
    router.addEarly(Method::get, "/healthz", [](const Request&) {
        return Response::json({{"status", "alive"}});
    });
    router.addEarly(Method::get, "/readyz", [this](const Request&) {
        return ready ? Response::json({{"status", "ready"}})
                     : Response::error(503, "the extension has not started");
    });
    router.add(Method::get, "/api/openapi.json", [](const Request&) { return description(); });
    router.addEarly(Method::get, "/api/version", [](const Request&) {
        return Response::json({{"name", "hmi-server"}, {"version", version}, {"build", build}});
    });
}

}  // namespace hmi
