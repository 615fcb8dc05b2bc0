#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>

#include "robustness/ContentCheck.h"
#include "robustness/HostLink.h"
#include "robustness/ProxyObject.h"
#include "support/RecordingHost.h"
#include "support/Simulation.h"
#include "target/TargetSystem.h"

namespace bridge_test {

/// One target system between a simulated runtime and a host, driven without a timer: nothing
/// happens but what a test asks for and what the library's thread delivers.
class Harness {
public:
    Harness();
    ~Harness();
    Harness(const Harness&) = delete;
    Harness& operator=(const Harness&) = delete;

    /// As a host configures a target system: again while it comes without a logger.
    void create();
    void connect();
    /// As the extension's timer does; true when the host was told to ask again.
    bool tick();
    /// Takes the target system out of use, as when it is removed from the configuration.
    void retire();

    void raise(const char* name, int event);
    void act(const char* verb, const char* alarm);
    void send(const char* source);
    /// Lets all notifications arrive that are under way; false when the connection is gone.
    bool fence();
    /// The same from inside a call of the library: only as long as that may take when nobody
    /// waits for this call.
    void letArrive();

    /// Ticks until everything agrees, or until nothing changes any more. Nothing goes wrong
    /// meanwhile.
    Findings settle();
    /// What is left of the library's objects, once they have had time to go.
    Findings findLeaks(std::chrono::milliseconds patience);

    bool isConnected() { return simulation.status().at("connected").as_bool(); }

    Simulation simulation;
    RecordingHost host;
    HostLink link{host};
    std::shared_ptr<ZrHmiEventLogger::TargetSystem> target;

private:
    LONG postFence();
    /// The references and stand-ins that came since the harness was made.
    std::int64_t references() { return simulation.liveObjects() - referencesBefore; }
    int standIns() const { return liveProxyObjects - standInsBefore; }
    bool tryCreate();
    void refresh() { target->provideEvents(link); }

    const std::int64_t referencesBefore = simulation.liveObjects();
    const int standInsBefore = liveProxyObjects;
    std::atomic<bool> stopFlag = false;
    std::atomic<std::int32_t> hostIds = 1;
};

}  // namespace bridge_test
