#pragma once

#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include "robustness/RunningServer.h"
#include "support/Simulation.h"

namespace bridge_test {

/// Everyone who does something to a server at a time, each on a thread of their own: runtimes in
/// which things happen, operators, clients and an administrator. What they do is random, but the
/// same for the same seed.
class Crowd {
public:
    Crowd(Simulation& simulation, RunningServer& server, unsigned seed);

    /// So much has happened in each runtime.
    void waitForSteps(int steps) const;
    /// Returns when everyone has stopped.
    void leave() { threads.clear(); }

    std::atomic<int> confirmed = 0;
    std::atomic<int> localized = 0;
    std::atomic<int> reconfigured = 0;

private:
    using Random = std::mt19937;

    void runtime(Random& random, const char* netId);
    void operators(Random& random);
    void client(Random& random);
    void administrator(Random& random);
    template <class Act>
    void start(unsigned seed, Act act);

    Simulation& simulation;
    RunningServer& server;
    std::atomic<int> fillerSteps = 0;
    std::atomic<int> packerSteps = 0;
    std::vector<std::jthread> threads;  ///< last: they use the rest
};

}  // namespace bridge_test
