#include "server/confirmations/ConfirmationBatch.h"

#include <utility>

namespace hmi {

void ConfirmationBatch::set(std::size_t index, ConfirmationOutcome outcome) {
    Lock lock(mutex);
    outcomes[index] = std::move(outcome);
    if (--outstanding == 0)
        changed.notify_all();
}

std::vector<ConfirmationOutcome> ConfirmationBatch::await(std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    Lock lock(mutex);
    while (outstanding > 0 && changed.wait_until(lock, end) != std::cv_status::timeout) {
    }
    return outcomes;
}

}  // namespace hmi
