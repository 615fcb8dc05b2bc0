#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "simulator/runtime/SinkList.h"

namespace ZrSimulator {

/// A logger's connection to a runtime, from one connect until it is closed from either side.
struct Connection {
    Connection(std::shared_ptr<SinkList> sinks, bool preloadTranslations)
        : sinks(std::move(sinks)), preloadTranslations(preloadTranslations) {}

    const std::shared_ptr<SinkList> sinks;
    const bool preloadTranslations;
    std::atomic<bool> open = false;
};

}  // namespace ZrSimulator
