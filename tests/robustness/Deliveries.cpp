#include "robustness/Deliveries.h"

#include <utility>

namespace bridge_test {

Deliveries& Deliveries::instance() {
    static Deliveries deliveries;
    return deliveries;
}

LONG Deliveries::nextFence() {
    Lock lock(mutex);
    return ++given;
}

bool& Deliveries::onThisThread() {
    thread_local bool delivering = false;
    return delivering;
}

void Deliveries::complain(std::string complaint) {
    Lock lock(mutex);
    complaints.push_back(std::move(complaint));
}

std::vector<std::string> Deliveries::takeComplaints() {
    Lock lock(mutex);
    return std::exchange(complaints, {});
}

void Deliveries::fenceDelivered(LONG fence) {
    {
        Lock lock(mutex);
        delivered = fence;
    }
    changed.notify_all();
}

bool Deliveries::waitFor(LONG fence, std::chrono::milliseconds time) {
    const auto deadline = std::chrono::steady_clock::now() + time;
    Lock lock(mutex);
    while (delivered < fence) {
        if (changed.wait_until(lock, deadline) == std::cv_status::timeout)
            return delivered >= fence;
    }
    return true;
}

}  // namespace bridge_test
