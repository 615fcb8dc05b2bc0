#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "server/http/Router.h"
#include "server/lanes/WorkerLanes.h"
#include "server/metrics/Metrics.h"

namespace hmi {

/// Takes requests from the network, has them served on the right threads, and turns every failure
/// into an error response.
class Dispatcher {
public:
    Dispatcher(const Router& router, WorkerLanes& lanes, Metrics& metrics)
        : router(router), lanes(lanes), metrics(metrics) {}

    using Reply = std::function<void(Response)>;

    /// Has a request served that was admitted, or answered that was refused. Replies once, from
    /// any thread, possibly before this returns; or not at all when the client has gone meanwhile.
    /// Any thread.
    void dispatch(Request request, std::optional<Response> refusal, Reply reply);
    /// Has a worker do what takes time but waits for nothing; or the other, when there is none.
    void work(std::function<void()> task, std::function<void()> refused);
    static bool isStream(std::string_view target);
    /// The largest body that a target takes, in bytes.
    static std::uint64_t bodyLimit(std::string_view target);

private:
    struct Exchange {
        const Route& route;
        const Request request;
        const Reply reply;
    };

    void place(const std::shared_ptr<Exchange>& exchange);
    void handle(const Place& place, const std::shared_ptr<Exchange>& exchange);
    /// In that lane, unless the client has gone by then.
    void run(const Place& place, const std::shared_ptr<Exchange>& exchange,
             std::function<void()> work);
    void answer(const Exchange& exchange, Response response);

    const Router& router;
    WorkerLanes& lanes;
    Metrics& metrics;
};

}  // namespace hmi
