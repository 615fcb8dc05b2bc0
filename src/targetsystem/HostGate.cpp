#include "targetsystem/HostGate.h"

#include <thread>

namespace ZrHmiEventLogger {

void HostGate::close(std::chrono::steady_clock::time_point deadline) {
    closed = true;
    // Calls of the host are short, and there is one shutdown in a lifetime.
    while (running > 0 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

}  // namespace ZrHmiEventLogger
