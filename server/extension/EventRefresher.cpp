#include "server/extension/EventRefresher.h"

#include <chrono>
#include <exception>
#include <string>

#include "server/Log.h"
#include "server/json/Utf8.h"

namespace hmi {

void EventRefresher::request() {
    Lock lock(mutex);
    requested = true;
    changed.notify_all();
}

void EventRefresher::start() {
    request();
    if (awaitRequest())
        refresh();
    worker = std::thread([this] { run(); });
}

void EventRefresher::cease() {
    Lock lock(mutex);
    stopping = true;
    changed.notify_all();
}

void EventRefresher::stop() {
    cease();
    if (worker.joinable())
        worker.join();
}

void EventRefresher::run() {
    while (awaitRequest())
        refresh();
}

bool EventRefresher::awaitRequest() {
    Lock lock(mutex);
    while (!requested && !stopping)
        changed.wait(lock);
    requested = false;
    return !stopping;
}

void EventRefresher::refresh() {
    const auto start = std::chrono::steady_clock::now();
    book.beginReset();
    isComplete = true;
    const auto answer = extension.provideEvents(*this);
    if (!answer || !answer->succeeded() || !isComplete) {
        book.abandonReset();
        log(LogLevel::warning, "the extension did not hand over all events");
        return;
    }
    book.endReset();
    metrics.countReset(std::chrono::steady_clock::now() - start);
}

void EventRefresher::replace_events(const char* target_name,
                                    std::span<const ZrHmiSrv::Event> events) try {
    const std::string target = toValidUtf8(target_name ? target_name : "");
    book.replaceTarget(target, events, isImported(target));
} catch (const std::exception& exception) {
    isComplete = false;
    log(LogLevel::error, std::string("events of a target system were lost: ") + exception.what());
}

}  // namespace hmi
