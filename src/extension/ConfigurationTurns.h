#pragma once

#include <condition_variable>
#include <set>
#include <string>

#include "platform/Mutex.h"

namespace ZrHmiEventLogger {

/// Lets one configuration change at a time work on a target system, and changes of different ones
/// side by side: one that waits for its hanging target keeps no other waiting. Any thread.
class ConfigurationTurns {
public:
    /// The turn of a name, until the end of its scope.
    class Turn {
    public:
        Turn(ConfigurationTurns& turns, std::string name);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

    private:
        ConfigurationTurns& turns;
        const std::string name;
    };

private:
    Mutex configMutex;  ///< guards the names; nothing is called under it
    std::condition_variable_any changed;
    std::set<std::string> changing GUARDED_BY(configMutex);
};

}  // namespace ZrHmiEventLogger
