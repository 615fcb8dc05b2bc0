#include "server/http/Dispatcher.h"

#include <exception>
#include <memory>
#include <optional>

#include "server/Log.h"
#include "server/http/Conditional.h"

namespace hmi {

namespace {

/// Runs what makes a response; whatever it throws becomes one.
template <class Function>
Response responseOf(Function function) {
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

}  // namespace

void Dispatcher::dispatch(Request request, std::optional<Response> refused, Reply reply) {
    if (refused)
        return refuse(request, std::move(*refused), reply);
    const Route* route = nullptr;
    Response refusal = responseOf([&]() -> Response {
        route = &router.find(request);
        return notOpen();
    });
    if (!route || !(isOpened || route->early))
        return refuse(request, std::move(refusal), reply);
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
        if (exchange->route.lateHandler)
            return handleLate(exchange);
        answer(*exchange, responseOf([&] { return exchange->route.handler(exchange->request); }));
    });
}

void Dispatcher::handleLate(const std::shared_ptr<Exchange>& exchange) {
    bool isTaken = false;
    Response refusal = responseOf([&]() -> Response {
        exchange->route.lateHandler(exchange->request,
                                    [this, exchange](const std::function<Response()>& make) {
                                        answer(*exchange, responseOf(make));
                                    });
        isTaken = true;
        return {};
    });
    if (!isTaken)
        answer(*exchange, std::move(refusal));
}

void Dispatcher::run(const Place& place, const std::shared_ptr<Exchange>& exchange,
                     std::function<void()> work) {
    const auto unlessAbandoned = [this, exchange, work = std::move(work)] {
        const auto& client = exchange->request.client;
        if (client && client->isOver())
            metrics.countAbandonedRequest();
        else
            work();
    };
    const auto refuse = [this, exchange](const std::string& why) {
        answer(*exchange, Response::error(503, why));
    };
    lanes.run(place, {unlessAbandoned, refuse});
}

Response Dispatcher::notOpen() {
    Response response = Response::error(503, "the extension has not started");
    response.headers.emplace_back("Retry-After", "1");
    return response;
}

/// A request that was not even looked at: its body may be anything, a password too.
void Dispatcher::refuse(const Request& request, Response response, const Reply& reply) {
    metrics.countRequest(response.status);
    audit.recordRefused(request, response);
    reply(std::move(response));
}

void Dispatcher::answer(const Exchange& exchange, Response response) {
    audit.record(exchange.request, response);
    response = responseOf([&] {
        fit(exchange.request, response);
        return std::move(response);
    });
    metrics.countRequest(response.status);
    metrics.observeRequest(std::chrono::steady_clock::now() - exchange.start);
    exchange.reply(std::move(response));
}

void Dispatcher::work(Lane lane, std::function<void()> task, std::function<void()> refused) {
    lanes.run({lane},
              {std::move(task), [refused = std::move(refused)](const std::string&) { refused(); }});
}

bool Dispatcher::isStream(std::string_view target) {
    return Target::pathOf(target) == "/api/stream";
}

std::uint64_t Dispatcher::bodyLimit(std::string_view target) const {
    try {
        return router.bodyLimit(Target::parse(Target::pathOf(target)).path);
    } catch (const RequestError&) {
        return router.bodyLimit({});  // it is going to be refused
    }
}

}  // namespace hmi
