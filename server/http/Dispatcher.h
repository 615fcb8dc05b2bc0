#pragma once

#include <functional>
#include <memory>

#include "server/http/OriginPolicy.h"
#include "server/http/Router.h"
#include "server/lanes/WorkerLanes.h"
#include "server/metrics/Metrics.h"

namespace hmi {

/// Takes requests from the network, has them served on the right threads, and turns every failure
/// into an error response.
class Dispatcher {
public:
    Dispatcher(const Router& router, OriginPolicy policy, WorkerLanes& lanes, Metrics& metrics)
        : router(router), policy(std::move(policy)), lanes(lanes), metrics(metrics) {}

    using Reply = std::function<void(Response)>;

    /// Called on the I/O thread with a target that is not yet decoded; replies once, from any
    /// thread, possibly before this returns; or not at all when the client has gone meanwhile.
    void dispatch(Request request, std::string_view target, Reply reply);
    static bool isStream(std::string_view target);
    /// Whether the client that asks may follow the stream.
    bool allowsStream(const Request& request) const { return policy.allows(request); }
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
    const OriginPolicy policy;
    WorkerLanes& lanes;
    Metrics& metrics;
};

}  // namespace hmi
