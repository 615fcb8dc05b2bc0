#pragma once

#include <future>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "robustness/RandomActions.h"
#include "robustness/RunningServer.h"
#include "support/Simulation.h"

namespace bridge_test {

/// A server with its runtimes, in which actions happen; and what must be true of it, however the
/// actions meet: the server shows what the logger holds, each event once and in its state, also
/// after a reset and a reconnection, and an event keeps its id as long as the target system does.
class RandomWorld {
public:
    /// `numbered`: whether the logger has instance numbers. `patience`: how long the server may
    /// take until it is right, when nothing happens any more.
    RandomWorld(bool numbered, std::chrono::milliseconds patience);
    ~RandomWorld();

    /// What was wrong when the server was looked at first while anything was.
    Findings play(const RandomActions& actions);

private:
    /// The ids under which events are shown, by what does not change: the name of an alarm that
    /// lives, all that a message says.
    using Ids = std::map<std::string, std::set<std::string>>;

    void act(const boost::json::object& action);
    void actInRuntime(boost::json::object action);
    void inBackground(std::function<void()> task);
    void replaceTarget(const char* target, const char* netId);
    void confirmInServer(const std::string& alarm);
    /// Until there is one import more, or a call hangs because it is paused.
    void awaitImport(std::size_t importsBefore);
    bool hangs();
    std::size_t imports() const { return server.logged("Filler", "LOGGED_EVENTS_IMPORTED"); }
    /// How often a target system had to begin anew, so that ids are new.
    std::size_t failures() const;

    Findings settle();
    Findings look();
    bool isReset();
    void checkIds(Findings& findings);
    template <class Condition>
    bool within(Condition condition) const;

    const std::chrono::milliseconds patience;
    Simulation simulation;
    RunningServer server;
    Mutex configurationMutex;  ///< one change of the configuration at a time, as the server has it
    std::vector<std::future<void>> background;
    std::map<std::string, std::int64_t> paused;  ///< operations, with their calls before
    std::map<std::string, unsigned> lives;       ///< of each alarm that was ever raised
    unsigned fences = 0;
    unsigned replacements = 0;
    Ids shown;
    std::size_t failuresThen = 0;
};

}  // namespace bridge_test
