#include "server/http/Dispatcher.h"

#include <exception>
#include <memory>

#include "server/Log.h"
#include "server/http/Conditional.h"

namespace hmi {

namespace {

/// Runs what makes a response; whatever it throws becomes one.
template <class Function>
Response answer(Function function) {
    try {
        return function();
    } catch (const MethodError& error) {
        Response response = Response::error(error.status, error.what());
        response.headers.emplace_back("Allow", error.allow);
        return response;
    } catch (const RequestError& error) {
        return Response::error(error.status, error.what());
    } catch (const std::exception& exception) {
        log(LogLevel::error, std::string("a request failed: ") + exception.what());
    }
    return Response::error(500, "the server could not do this; its log says why");
}

/// Texts come from the extension, whatever else the request is about.
Lane laneOf(const Route& route, const Request& request) {
    return route.lane == Lane::local && request.target.query.find("locale") ? Lane::extension
                                                                            : route.lane;
}

}  // namespace

void Dispatcher::dispatch(Request request, std::string_view target, Reply reply) {
    const auto send = [this, reply = std::move(reply)](Response response) {
        metrics.countRequest(response.status);
        reply(std::move(response));
    };
    const Route* route = nullptr;
    Response refusal = answer([&]() -> Response {
        request.target = Target::parse(target);
        if (!request.target.authority.empty())
            request.host = request.target.authority;
        if (!policy.allows(request))
            throw RequestError(403, "not for pages of another origin");
        route = &router.find(request);
        return {};
    });
    if (!route)
        return send(std::move(refusal));
    const Lane lane = laneOf(*route, request);
    lanes.run(lane, [route, send, request = std::make_shared<Request>(std::move(request))] {
        send(answer([&] {
            Response response = route->handler(*request);
            fit(*request, response);
            return response;
        }));
    });
}

bool Dispatcher::isStream(std::string_view target) {
    return Target::pathOf(target) == "/api/stream";
}

std::uint64_t Dispatcher::bodyLimit(std::string_view target) {
    return Target::pathOf(target).starts_with("/sim/") ? 10 << 20 : 1 << 20;
}

}  // namespace hmi
