#include "extension/ConfigurationTurns.h"

#include <utility>

namespace ZrHmiEventLogger {

ConfigurationTurns::Turn::Turn(ConfigurationTurns& turns, std::string given)
    : turns(turns), name(std::move(given)) {
    Lock lock(turns.configMutex);
    while (!turns.changing.insert(name).second)
        turns.changed.wait(lock);
}

ConfigurationTurns::Turn::~Turn() {
    Lock lock(turns.configMutex);
    turns.changing.erase(name);
    turns.changed.notify_all();
}

}  // namespace ZrHmiEventLogger
