#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "simulator/runtime/Operation.h"

namespace ZrSimulator {

/// How often each operation was called. Any thread.
class CallCounters {
public:
    void count(Operation operation) { at(operation).fetch_add(1, std::memory_order_relaxed); }
    std::uint64_t operator[](Operation operation) const {
        return counts[static_cast<std::size_t>(operation)].load(std::memory_order_relaxed);
    }

private:
    std::atomic<std::uint64_t>& at(Operation operation) {
        return counts[static_cast<std::size_t>(operation)];
    }

    std::array<std::atomic<std::uint64_t>, operationCount> counts{};
};

}  // namespace ZrSimulator
