#pragma once

#include <chrono>
#include <condition_variable>
#include <string>
#include <vector>

#include "platform/Automation.h"
#include "platform/Mutex.h"

namespace bridge_test {

/// How far the library's thread has come with its notifications. A fence is a notification that
/// means nothing to the extension: a database change for a reason that does not exist. Once it
/// is delivered, so is everything before it. Any thread.
class Deliveries {
public:
    static Deliveries& instance();

    /// The reason of the next fence, greater than all before.
    LONG nextFence();
    static bool isFence(LONG reason) { return reason > lastRealReason; }

    /// Whether this thread is delivering a notification.
    static bool& onThisThread();

    /// Something that a sink must not do. Taken once.
    void complain(std::string complaint);
    std::vector<std::string> takeComplaints();

    void fenceDelivered(LONG fence);
    /// True when the fence was delivered in time.
    bool waitFor(LONG fence, std::chrono::milliseconds time);

private:
    static constexpr LONG lastRealReason = 1000;

    Mutex mutex;
    std::condition_variable_any changed;
    LONG given GUARDED_BY(mutex) = lastRealReason;
    LONG delivered GUARDED_BY(mutex) = lastRealReason;
    std::vector<std::string> complaints GUARDED_BY(mutex);
};

}  // namespace bridge_test
