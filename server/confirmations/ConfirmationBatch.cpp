#include "server/confirmations/ConfirmationBatch.h"

#include <utility>

namespace hmi {

void ConfirmationBatch::set(std::size_t index, ConfirmationOutcome outcome) {
    std::function<void()> tell;
    {
        Lock lock(mutex);
        if (!done)
            return;
        outcomes[index] = std::move(outcome);
        if (--outstanding > 0)
            return;
        tell = finished();
    }
    tell();
}

void ConfirmationBatch::expire() {
    std::function<void()> tell;
    {
        Lock lock(mutex);
        if (!done)
            return;
        tell = finished();
    }
    tell();
}

bool ConfirmationBatch::isOver() const {
    Lock lock(mutex);
    return !done;
}

std::function<void()> ConfirmationBatch::finished() {
    return [call = std::exchange(done, nullptr), all = std::move(outcomes)] { call(all); };
}

}  // namespace hmi
