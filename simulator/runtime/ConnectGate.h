#pragma once

#include <chrono>
#include <optional>

#include "simulator/plant/Action.h"

namespace ZrSimulator {

/// Whether a runtime accepts connections. Not synchronised.
class ConnectGate {
public:
    void refuse(const RefuseAction& action) {
        refusal = action;
        until = Clock::now() + action.time.value_or(std::chrono::milliseconds(0));
    }
    void accept() { refusal.reset(); }

    /// S_OK, or what a connect is refused with.
    HRESULT check() const {
        const bool over = refusal && refusal->time && Clock::now() >= until;
        return refusal && !over ? refusal->hresult : S_OK;
    }

private:
    using Clock = std::chrono::steady_clock;

    std::optional<RefuseAction> refusal;
    Clock::time_point until;
};

}  // namespace ZrSimulator
