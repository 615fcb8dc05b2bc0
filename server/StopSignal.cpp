#include "server/StopSignal.h"

#include <csignal>
#include <cstdlib>
#include <utility>

namespace hmi {

namespace {

extern "C" void endAtOnce(int) {
    std::_Exit(EXIT_SUCCESS);
}

}  // namespace

StopSignal::StopSignal(boost::asio::io_context& io) : signals(io, SIGINT, SIGTERM) {
#ifdef SIGBREAK
    signals.add(SIGBREAK);
#endif
    signals.async_wait([this](boost::system::error_code error, int) {
        if (!error)
            onSignal();
    });
}

void StopSignal::onSignal() {
    signals.clear();
    // Needs no thread of ours, so that it works whatever hangs.
    for (const int signal : {SIGINT, SIGTERM})
        std::signal(signal, endAtOnce);
#ifdef SIGBREAK
    std::signal(SIGBREAK, endAtOnce);
#endif
    Lock lock(mutex);
    received = true;
    changed.notify_all();
}

bool StopSignal::wait() {
    Lock lock(mutex);
    while (!received && !woken)
        changed.wait(lock);
    woken = false;
    return received;
}

void StopSignal::wake() {
    Lock lock(mutex);
    woken = true;
    changed.notify_all();
}

}  // namespace hmi
