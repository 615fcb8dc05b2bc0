#include "server/StopSignal.h"

#include <csignal>

namespace hmi {

StopSignal::StopSignal(boost::asio::io_context& io) : signals(io, SIGINT, SIGTERM) {
#ifdef SIGBREAK
    signals.add(SIGBREAK);
#endif
    signals.async_wait([this](boost::system::error_code error, int) {
        if (error)
            return;
        signals.clear();
        received.set_value();
    });
}

}  // namespace hmi
