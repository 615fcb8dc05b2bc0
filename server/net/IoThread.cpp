#include "server/net/IoThread.h"

#include <exception>
#include <string>

#include "server/Log.h"

namespace hmi {

namespace {

/// An exception ends the work that it came from, not the thread.
void runAll(boost::asio::io_context& io) {
    while (true) {
        try {
            io.run();
            return;
        } catch (const std::exception& exception) {
            log(LogLevel::error, std::string("on the I/O thread: ") + exception.what());
        }
    }
}

}  // namespace

IoThread::IoThread() : work(io.get_executor()) {
    thread = std::thread([this] {
        runAll(io);
        ended.set_value();
    });
}

void IoThread::stop(std::chrono::milliseconds patience) {
    if (!thread.joinable())
        return;
    work.reset();
    if (ended.get_future().wait_for(patience) != std::future_status::ready)
        io.stop();
    thread.join();
}

}  // namespace hmi
