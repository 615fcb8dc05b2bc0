#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "robustness/ContentCheck.h"
#include "platform/Mutex.h"
#include "robustness/HostLink.h"
#include "robustness/ProxyObject.h"
#include "support/RecordingHost.h"
#include "support/Simulation.h"
#include "targetsystem/TargetSystem.h"

namespace bridge_test {

// Actions for the simulated runtime. The name of an event is its source's, and an alarm's own.
// `more` are further fields, each with a comma before it.
std::string raiseAction(const char* name, int event, const char* more = "");
std::string messageAction(const char* name, const char* more = "");
/// "clear" or "confirm".
std::string alarmAction(const char* verb, const char* alarm);

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

    /// Lets all notifications arrive that are under way or held; false when the connection is
    /// gone.
    bool fence();
    /// The same from inside a call of the library: only as long as that takes when nobody waits
    /// for this call.
    void letArrive();

    /// Looks up the texts of an alarm of event 1 in English. Answers what is wrong with those that
    /// came.
    Findings lookUpTexts(bool required);

    /// The alarm of this name as the host shows it; not set when it does not.
    ZrHmiSrv::Alarm shown(const char* name);
    /// The texts of an alarm of event 1 in the language of a client; empty when there is no alarm
    /// or the look-up fails.
    std::string localize(const ZrHmiSrv::Alarm& alarm);
    static const char* const expectedTexts;

    /// Ticks until everything agrees, or until nothing changes any more. Nothing goes wrong
    /// meanwhile. `importAgain`: what is not known to be wrong has to be read again.
    Findings settle(bool importAgain);
    /// What the extension has reported that it reports of a sound library never.
    Findings complaints();
    /// What is left of the library's objects, once they have had time to go.
    Findings findLeaks(std::chrono::milliseconds patience);

    std::int64_t callsOf(const char* operation) {
        return simulation.status().at("calls").at(operation).to_number<std::int64_t>();
    }
    bool isConnected() { return simulation.status().at("connected").as_bool(); }

    Simulation simulation;
    RecordingHost host;
    HostLink link{host};
    std::shared_ptr<ZrHmiEventLogger::TargetSystem> target;

private:
    LONG postFence();
    /// The references and stand-ins that came since the harness was made.
    std::int64_t references() { return simulation.liveObjects() - referencesBefore; }
    int standIns() const { return liveProxyObjects() - standInsBefore; }
    bool tryCreate();
    void refresh() { target->provideEvents(link); }

    const std::int64_t referencesBefore = simulation.liveObjects();
    const int standInsBefore = liveProxyObjects();
    Mutex fenceMutex;  ///< fences are posted in the order of their numbers
    std::atomic<bool> stopFlag = false;
    std::atomic<std::int32_t> hostIds = 1;
    ZrHmiEventLogger::LocalAddress localAddress;
};

}  // namespace bridge_test
