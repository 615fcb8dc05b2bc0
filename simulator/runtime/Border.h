#pragma once

#include <atomic>

#include "simulator/runtime/CallCounters.h"
#include "simulator/runtime/FaultPlan.h"

namespace ZrSimulator {

/// Between a runtime and the library's clients: their calls are counted and hindered here, and
/// the references that they hold are added up. Objects share it, so that it outlives the runtime.
struct Border {
    virtual ~Border() = default;
    /// Every call begins here; see FaultPlan.
    virtual std::optional<HRESULT> enter(Operation operation) {
        calls.count(operation);
        return faults.enter(operation);
    }

    CallCounters calls;
    FaultPlan faults;
    std::atomic<long> references = 0;
    std::atomic<long> advised = 0;
};

}  // namespace ZrSimulator
