#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "events/RecordedCallback.h"
#include "platform/Mutex.h"

namespace ZrHmiEventLogger {

/// Decides what becomes of a target's notifications: handled at once or, while an import runs,
/// recorded. Whoever holds `sinkMutex` keeps all of them waiting. More than its capacity it does not
/// keep: then the recording is given up, and what arrives until its end is dropped.
class NotificationRecorder {
public:
    using Records = std::vector<RecordedCallback>;

    /// Each keeps its object alive in the proxy library, where it takes about a kilobyte.
    static constexpr std::size_t defaultCapacity = 250'000;
    explicit NotificationRecorder(std::size_t capacity = defaultCapacity) : capacity(capacity) {}

    /// Runs `handle` under `sinkMutex`, or keeps the record in its place.
    template <class Handler>
    void deliver(RecordedCallback&& record, Handler handle) EXCLUDES(sinkMutex) {
        Records givenUp;  // released without the lock
        Lock lock(sinkMutex);
        if (!recording)
            return handle(record);
        if (++arrived <= capacity)
            return recordedCallbacks.push_back(std::move(record));
        overruns += arrived == capacity + 1;
        givenUp.swap(recordedCallbacks);
    }

    void startRecording() REQUIRES(sinkMutex) {
        recording = true;
        arrived = 0;
    }
    void stopRecording() REQUIRES(sinkMutex) { recording = false; }
    /// In the order of their arrival.
    Records takeRecords() REQUIRES(sinkMutex) { return std::exchange(recordedCallbacks, {}); }
    /// The records are all that arrived since the recording was started.
    bool isComplete() const REQUIRES(sinkMutex) { return arrived <= capacity; }
    /// Recordings that were given up.
    std::uint64_t overrunCount() const REQUIRES(sinkMutex) { return overruns; }

    RecursiveMutex sinkMutex;  ///< guards what is below and keeps notifications in their order
    const std::size_t capacity;

private:
    bool recording GUARDED_BY(sinkMutex) = false;
    std::size_t arrived GUARDED_BY(sinkMutex) = 0;  ///< since the recording was started
    std::uint64_t overruns GUARDED_BY(sinkMutex) = 0;
    Records recordedCallbacks GUARDED_BY(sinkMutex);
};

}  // namespace ZrHmiEventLogger
