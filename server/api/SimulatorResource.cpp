#include "server/api/SimulatorResource.h"

namespace hmi {

namespace {

Response toResponse(SimulatorAnswer answer) {
    Response response;
    response.status = answer.status;
    response.body = std::move(answer.body);
    return response;
}

}  // namespace

void SimulatorResource::addRoutes(Router& router) {
    router.add(Method::get, "/sim/*", [this](const Request& request) {
        request.target.query.allowOnly({});
        return toResponse(simulator.status(request.target.path[1]));
    });
    router.add(Method::post, "/sim/*", [this](const Request& request) {
        request.target.query.allowOnly({});
        if (request.body.find('\0') != std::string::npos)
            throw RequestError(400, "a NUL character is no JSON");
        return toResponse(simulator.apply(request.target.path[1], request.body));
    });
    router.limitBody("/sim/*", 10 << 20);
}

}  // namespace hmi
