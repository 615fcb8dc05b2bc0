#pragma once

#include <functional>

#include "server/metrics/Metrics.h"
#include "server/WorkerLanes.h"
#include "server/http/OriginPolicy.h"
#include "server/http/Router.h"

namespace hmi {

/// Takes requests from the network, has them served on the right threads, and turns every failure
/// into an error response.
class Dispatcher {
public:
    Dispatcher(const Router& router, OriginPolicy policy, WorkerLanes& lanes, Metrics& metrics)
        : router(router), policy(std::move(policy)), lanes(lanes), metrics(metrics) {}

    using Reply = std::function<void(Response)>;

    /// Called on the I/O thread with a target that is not yet decoded; replies once, from any
    /// thread, possibly before this returns.
    void dispatch(Request request, std::string_view target, Reply reply);
    /// Has a worker do what takes time but waits for nothing.
    void work(std::function<void()> task) { lanes.run(Lane::local, std::move(task)); }
    static bool isStream(std::string_view target);
    /// Whether the client that asks may follow the stream.
    bool allowsStream(const Request& request) const { return policy.allows(request); }
    /// The largest body that a target takes, in bytes.
    static std::uint64_t bodyLimit(std::string_view target);

private:
    const Router& router;
    const OriginPolicy policy;
    WorkerLanes& lanes;
    Metrics& metrics;
};

}  // namespace hmi
