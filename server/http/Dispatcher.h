#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "server/http/Router.h"
#include "server/lanes/WorkerLanes.h"
#include "server/metrics/Metrics.h"
#include "server/users/Audit.h"

namespace hmi {

/// Takes requests from the network, has them served on the right threads, and turns every failure
/// into an error response.
class Dispatcher {
public:
    Dispatcher(const Router& router, WorkerLanes& lanes, Metrics& metrics, Audit& audit)
        : router(router), lanes(lanes), metrics(metrics), audit(audit) {}

    /// The extension has started. Before that only early routes are served. Any thread.
    void open() noexcept { isOpened = true; }
    bool isOpen() const noexcept { return isOpened; }
    static Response notOpen();

    using Reply = std::function<void(Response)>;

    /// Has a request served that was admitted, or answered that was refused. Replies once, from
    /// any thread, possibly before this returns; or not at all when the client has gone meanwhile.
    /// Any thread.
    void dispatch(Request request, std::optional<Response> refusal, Reply reply);
    /// Has a worker of that lane do what takes time; or the other, when there is none.
    void work(Lane lane, std::function<void()> task, std::function<void()> refused);
    static bool isStream(std::string_view target);
    /// The largest body that a target takes, in bytes.
    std::uint64_t bodyLimit(std::string_view target) const;

private:
    struct Exchange {
        const Route& route;
        const Request request;
        const Reply reply;
        const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    };

    void place(const std::shared_ptr<Exchange>& exchange);
    void handle(const Place& place, const std::shared_ptr<Exchange>& exchange);
    void handleLate(const std::shared_ptr<Exchange>& exchange);
    /// In that lane, unless the client has gone by then.
    void run(const Place& place, const std::shared_ptr<Exchange>& exchange,
             std::function<void()> work);
    void answer(const Exchange& exchange, Response response);
    void refuse(const Request& request, Response response, const Reply& reply);

    const Router& router;
    WorkerLanes& lanes;
    Metrics& metrics;
    Audit& audit;
    std::atomic<bool> isOpened = false;
};

}  // namespace hmi
