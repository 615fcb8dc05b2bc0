#pragma once

#include <string>
#include <vector>

#include <boost/json/value.hpp>

namespace bridge_test {

inline constexpr const char* fillerNetId = "5.10.20.30.1.1";
inline constexpr const char* packerNetId = "5.10.20.40.1.1";
inline constexpr const char* eventClass = "{0000ABCD-0001-0002-0304-05060708090A}";

/// Simulated runtimes for the length of a scope, with one event class: 1 is an alarm that wants a
/// confirmation, 2 one that does not, 3 a message.
class Simulation {
public:
    /// The filler, with this log, and the packer. `numbered`: whether the loggers have instance
    /// numbers.
    explicit Simulation(const std::string& fillerLog = "[]", bool numbered = true);
    /// Runtimes that all have this log.
    explicit Simulation(const std::vector<std::string>& netIds, const std::string& log = "[]");
    ~Simulation();
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    /// Fails the running test when the action is refused.
    void act(const std::string& action, const char* netId = fillerNetId);
    /// `more`: further members of the action.
    void raise(const std::string& name, int event = 1, const char* netId = fillerNetId,
               const std::string& more = {});
    boost::json::object status(const char* netId = fillerNetId);
    std::int64_t liveObjects(const char* netId = fillerNetId);
    /// How often a runtime was asked to do something.
    std::int64_t calls(const char* operation, const char* netId = fillerNetId);
};

}  // namespace bridge_test
