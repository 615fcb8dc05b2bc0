#pragma once

#include <chrono>
#include <thread>

namespace bridge_test {

/// For conditions that nobody signals: true as soon as it holds, false when it did not in time.
template <class Condition>
bool eventually(Condition condition,
                std::chrono::milliseconds patience = std::chrono::seconds(20)) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace bridge_test
