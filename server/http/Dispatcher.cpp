#include "server/http/Dispatcher.h"

#include <exception>
#include <memory>
#include <optional>

#include "server/Log.h"

namespace hmi {

namespace {

/// Runs what makes a response; whatever it throws becomes one.
template <class Function>
Response responseOf(Function function) {
    try {
        return function();
    } catch (const MethodError& error) {
        Response response = Response::error(error.status, error.what());
        response.allow = error.allow;
        return response;
    } catch (const RequestError& error) {
        return Response::error(error.status, error.what());
    } catch (const std::exception& exception) {
        log(LogLevel::error, std::string("a request failed: ") + exception.what());
    }
    return Response::error(500, "the server could not do this; its log says why");
}

}  // namespace

void Dispatcher::dispatch(Request request, std::string_view target, Reply reply) {
    const Route* route = nullptr;
    Response refusal = responseOf([&]() -> Response {
        request.target = Target::parse(target);
        if (!request.target.authority.empty())
            request.host = request.target.authority;
        if (!policy.allows(request))
            throw RequestError(403, "not for pages of another origin");
        route = &router.find(request);
        return {};
    });
    if (!route) {
        metrics.countRequest(refusal.status);
        return reply(std::move(refusal));
    }
    const std::shared_ptr<Exchange> exchange(
        new Exchange{*route, std::move(request), std::move(reply)});
    if (route->placement)
        run({Lane::local}, exchange, [this, exchange] { place(exchange); });
    else
        handle({Lane::local}, exchange);
}

void Dispatcher::place(const std::shared_ptr<Exchange>& exchange) {
    std::optional<Place> place;
    Response refusal = responseOf([&]() -> Response {
        place = exchange->route.placement(exchange->request);
        return {};
    });
    if (place)
        handle(*place, exchange);
    else
        answer(*exchange, std::move(refusal));
}

void Dispatcher::handle(const Place& place, const std::shared_ptr<Exchange>& exchange) {
    run(place, exchange, [this, exchange] {
        answer(*exchange, responseOf([&] { return exchange->route.handler(exchange->request); }));
    });
}

void Dispatcher::run(const Place& place, const std::shared_ptr<Exchange>& exchange,
                     std::function<void()> work) {
    const auto unlessAbandoned = [this, exchange, work = std::move(work)] {
        const auto& abandoned = exchange->request.abandoned;
        if (abandoned && *abandoned)
            metrics.countAbandonedRequest();
        else
            work();
    };
    const auto refuse = [this, exchange](const std::string& why) {
        answer(*exchange, Response::error(503, why));
    };
    lanes.run(place, {unlessAbandoned, refuse});
}

void Dispatcher::answer(const Exchange& exchange, Response response) {
    metrics.countRequest(response.status);
    exchange.reply(std::move(response));
}

bool Dispatcher::isStream(std::string_view target) {
    return Target::pathOf(target) == "/api/stream";
}

std::uint64_t Dispatcher::bodyLimit(std::string_view target) {
    return Target::pathOf(target).starts_with("/sim/") ? 10 << 20 : 1 << 20;
}

}  // namespace hmi
