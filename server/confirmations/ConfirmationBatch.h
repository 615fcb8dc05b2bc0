#pragma once

#include <functional>
#include <vector>

#include "platform/Mutex.h"
#include "server/confirmations/ConfirmationService.h"

namespace hmi {

/// The outcomes of many confirmations that are asked for side by side. Shared by the threads that
/// ask; thread-safe.
class ConfirmationBatch {
public:
    using Outcomes = std::vector<ConfirmationOutcome>;
    /// Called once, when there are all or the time is up, with no lock held.
    using Done = std::function<void(const Outcomes&)>;

    ConfirmationBatch(std::size_t count, Done done)
        : done(std::move(done)),
          outcomes(count, {504, {}, "there is no answer yet"}),
          outstanding(count) {}

    void set(std::size_t index, ConfirmationOutcome outcome);
    /// What is not known by now is not waited for.
    void expire();
    /// What has not been asked for by then is asked for no more.
    bool isOver() const;

private:
    std::function<void()> finished() REQUIRES(mutex);

    mutable Mutex mutex;          ///< guards all below
    Done done GUARDED_BY(mutex);  ///< none once it was called
    Outcomes outcomes GUARDED_BY(mutex);
    std::size_t outstanding GUARDED_BY(mutex);
};

}  // namespace hmi
