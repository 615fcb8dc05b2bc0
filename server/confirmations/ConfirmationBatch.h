#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <vector>

#include "platform/Mutex.h"
#include "server/confirmations/ConfirmationService.h"

namespace hmi {

/// The outcomes of many confirmations that are asked for side by side. Shared by the threads that
/// ask and the one that waits; thread-safe.
class ConfirmationBatch {
public:
    explicit ConfirmationBatch(std::size_t count)
        : outcomes(count, {504, {}, "there is no answer yet"}), outstanding(count) {}

    void set(std::size_t index, ConfirmationOutcome outcome);
    /// Returns when there are all, or the time is up.
    std::vector<ConfirmationOutcome> await(std::chrono::milliseconds patience);

private:
    Mutex mutex;  ///< guards all below
    std::condition_variable_any changed;
    std::vector<ConfirmationOutcome> outcomes GUARDED_BY(mutex);
    std::size_t outstanding GUARDED_BY(mutex);
};

}  // namespace hmi
