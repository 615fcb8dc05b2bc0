#include "server/ReloadSignal.h"

#include <csignal>
#include <utility>

namespace hmi {

ReloadSignal::ReloadSignal(boost::asio::io_context& io, std::function<void()> callback)
    : reload(std::move(callback)), signals(io) {
#ifdef SIGHUP
    signals.add(SIGHUP);
#endif
    wait();
}

void ReloadSignal::wait() {
    signals.async_wait([this](boost::system::error_code error, int) {
        if (error)
            return;
        reload();
        wait();
    });
}

}  // namespace hmi
