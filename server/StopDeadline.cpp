#include "server/StopDeadline.h"

#include <cstdlib>
#include <utility>

#include "server/Log.h"

namespace hmi {

StopDeadline::StopDeadline(std::chrono::milliseconds patience,
                           std::function<std::string()> tellRunning)
    : running(std::move(tellRunning)), thread([this, patience] { watch(patience); }) {}

StopDeadline::~StopDeadline() {
    {
        Lock lock(mutex);
        isOver = true;
        changed.notify_all();
    }
    thread.join();
}

void StopDeadline::watch(std::chrono::milliseconds patience) {
    constexpr std::chrono::milliseconds usual{200};
    if (isOverWithin(usual))
        return;
    const std::string calls = running();
    log(LogLevel::info, "stopping: waiting for " + (calls.empty() ? "the extension" : calls));
    if (isOverWithin(patience - usual))
        return;
    log(LogLevel::error, "the extension does not let go, the process ends without it");
    std::_Exit(EXIT_SUCCESS);
}

bool StopDeadline::isOverWithin(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    Lock lock(mutex);
    while (!isOver && changed.wait_until(lock, end) != std::cv_status::timeout) {
    }
    return isOver;
}

}  // namespace hmi
