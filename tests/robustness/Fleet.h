#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "robustness/RunningServer.h"
#include "support/Simulation.h"

namespace bridge_test {

// Actions for a simulated runtime. The name of an event is its source's, and an alarm's own.
// `more` are further fields, each with a comma before it.
std::string raiseAction(const char* name, int event, const char* more = "");
std::string messageAction(const char* name, const char* more = "");
/// "clear" or "confirm".
std::string alarmAction(const char* verb, const char* alarm);

/// A target system and the runtime that it belongs to.
struct Machine {
    std::string name;
    std::string netId;
    std::string struck = {};  ///< the call that met the planned failure
    Findings findings = {};
};

/// Machines of one server that live the same life side by side. Nothing goes wrong with the first
/// of them, with the others what is planned, and that costs their neighbours nothing.
class Fleet {
public:
    /// None of them can be connected before `accept`.
    explicit Fleet(std::size_t size);

    /// Lets them be connected. `plan` has what a machine does before, each with a comma behind it.
    void accept(const std::function<std::string(std::size_t index)>& plan);
    void act(const std::string& actions);

    /// Returns when the server shows of each machine what its logger holds, or the patience is
    /// over; what differs then has been found, and nobody waits for that machine again.
    /// `importAgain`: a machine that was struck has to be read again first.
    void settle(bool importAgain = false);
    void forEach(const std::function<void(Machine&)>& visit);

    /// The alarm of this name as the server shows it; null when it does not.
    hmi::EventRecordPtr shown(const Machine& machine, const char* alarm) const;
    bool isConfirmed(const Machine& machine, const char* alarm);
    /// What the server has logged of machines that it logs of no sound one.
    void findComplaints();
    /// Stops the server: nothing of it may be left in a runtime.
    void stopAndFindLeaks();

    std::chrono::milliseconds patience{10'000};
    std::vector<Machine> machines;

private:
    bool hasArrived(Machine& machine);
    bool agrees(const Machine& machine);
    Findings differences(const Machine& machine);

    Simulation simulation;
    std::map<std::string, hmi::TargetCounts> counts;  ///< shown, once the first machine agrees

public:
    RunningServer server;
};

}  // namespace bridge_test
