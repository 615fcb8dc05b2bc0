#pragma once

#include <map>
#include <memory>

#include "platform/Mutex.h"
#include "simulator/plant/Plant.h"
#include "simulator/runtime/Runtime.h"

namespace ZrSimulator {

/// The runtimes of the process. Any thread.
class Simulator {
public:
    /// Never destroyed: its threads may still run when a host that did not shut it down exits.
    static Simulator& instance();

    /// Replaces the runtimes and starts the new ones. Not from within a notification.
    void load(Plant plant);
    void shutDown() { load(Plant()); }
    /// Null when there is none.
    std::shared_ptr<Runtime> find(const FnxNetId& netId);

    /// The border of objects that have not addressed a runtime yet: their calls are calls of
    /// every runtime, whose faults all apply to them.
    const std::shared_ptr<Border>& unbound() const { return unboundBorder; }

private:
    using Runtimes = std::map<FnxNetId, std::shared_ptr<Runtime>, NetIdLess>;
    class UnboundBorder;

    Simulator();
    Runtimes copyRuntimes();

    Mutex loadMutex;  ///< lets one `load` run at a time; held while it waits for threads
    Mutex mutex;
    Runtimes runtimes GUARDED_BY(mutex);
    const std::shared_ptr<Border> unboundBorder;
};

}  // namespace ZrSimulator
