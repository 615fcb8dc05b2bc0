#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "events/RecordedCallback.h"
#include "platform/Mutex.h"

namespace ZrHmiEventLogger {

/// Decides what becomes of a target's notifications: handled at once or, while an import runs,
/// recorded. Whoever holds `sinkMutex` keeps all of them waiting.
class NotificationRecorder {
public:
    using Records = std::vector<std::shared_ptr<RecordedCallback>>;

    /// Runs `handle` under `sinkMutex`, or keeps the record in its place.
    template <class Handler>
    void deliver(RecordedCallback&& record, Handler handle) EXCLUDES(sinkMutex) {
        Lock lock(sinkMutex);
        if (recording)
            recordedCallbacks.push_back(std::make_shared<RecordedCallback>(std::move(record)));
        else
            handle(record);
    }

    void startRecording() REQUIRES(sinkMutex) { recording = true; }
    void stopRecording() REQUIRES(sinkMutex) { recording = false; }
    /// In the order of their arrival.
    Records takeRecords() REQUIRES(sinkMutex) { return std::exchange(recordedCallbacks, {}); }

    RecursiveMutex sinkMutex;  ///< guards the two below and keeps notifications in their order

private:
    bool recording GUARDED_BY(sinkMutex) = false;
    Records recordedCallbacks GUARDED_BY(sinkMutex);
};

}  // namespace ZrHmiEventLogger
