#include "server/targets/TargetWatch.h"

#include <exception>

#include "server/Log.h"

namespace hmi {

namespace {

/// How late readers learn of another state at most.
constexpr std::chrono::milliseconds tellInterval{200};
constexpr int tellsPerLook = 5;

}  // namespace

void TargetWatch::start() {
    look();
    thread = std::thread([this] { run(); });
}

void TargetWatch::stop() {
    {
        Lock lock(mutex);
        stopping = true;
        changed.notify_all();
    }
    if (thread.joinable())
        thread.join();
}

void TargetWatch::run() {
    for (int turn = 1; sleep(tellInterval); ++turn) {
        try {
            if (turn % tellsPerLook == 0)
                look();
            tell();
        } catch (const std::exception& exception) {
            log(LogLevel::error, std::string("target systems: ") + exception.what());
        }
    }
}

void TargetWatch::look() {
    const auto before = targets.versions();
    const ZrHmiSrv::Value diagnostics = from.diagnostics();
    if (!diagnostics.is_map())
        return;
    for (const std::string& trusted : targets.observe(diagnostics, before, from.addresses()))
        events.dropLastKnown(trusted);
}

void TargetWatch::tell() {
    for (const std::string& line : targets.takeLines())
        log(LogLevel::info, line);
    for (Change& change : targets.takeNews())
        sink.post(std::move(change));
}

bool TargetWatch::sleep(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    Lock lock(mutex);
    while (!stopping && changed.wait_until(lock, end) != std::cv_status::timeout) {
    }
    return !stopping;
}

}  // namespace hmi
