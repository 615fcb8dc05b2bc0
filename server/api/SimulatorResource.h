#pragma once

#include "server/extension/SimulatorControl.h"
#include "server/http/Router.h"

namespace hmi {

/// /sim: steers the simulated runtimes.
class SimulatorResource {
public:
    explicit SimulatorResource(const SimulatorControl& simulator) : simulator(simulator) {}

    void addRoutes(Router& router);

private:
    const SimulatorControl& simulator;
};

}  // namespace hmi
