#pragma once

#include <array>
#include <string>

#include "server/lanes/CappedLane.h"
#include "server/lanes/Lane.h"
#include "server/metrics/PrometheusText.h"

namespace hmi {

/// The threads that serve requests, a lane for each kind of work. However many calls hang, the
/// other lanes go on, and so do the other target systems in the same lane. Thread-safe.
class WorkerLanes {
public:
    void run(const Place& place, Work work) { of(place.lane).run(place.target, std::move(work)); }
    /// Refuses what waits, and everything from now on.
    void stop();
    /// Returns when nothing runs any more; after `stop`.
    void join();

    /// The calls of the extension that run, for people; empty when there are none.
    std::string running() const;
    void write(PrometheusText& text) const;

private:
    CappedLane& of(Lane lane) { return lanes[static_cast<std::size_t>(lane)]; }

    // A lane of the extension has a thread for each call that may hang. In the order of `Lane`.
    std::array<CappedLane, 10> lanes{{{"requests", {4, 4, 1000, 1000}},
                                      {"lists", {64, 64, 1000, 1000}},
                                      {"long lists", {2, 2, 1000, 1000}},
                                      {"long lists with texts", {4, 4, 1000, 1000}},
                                      {"searches of the history", {4, 4, 1000, 1000}},
                                      {"confirmations", {400, 2, 32, 1000}},
                                      {"commands", {400, 2, 32, 1000}},
                                      {"changes of the configuration", {400, 1, 16, 1000}},
                                      {"look-ups of details", {400, 2, 32, 1000}},
                                      {"look-ups of texts", {400, 2, 2000, 20'000}}}};
};

}  // namespace hmi
