#pragma once

#include <condition_variable>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "platform/Mutex.h"
#include "server/events/EventBook.h"
#include "server/extension/ExtensionCalls.h"
#include "server/metrics/Metrics.h"

namespace hmi {

/// Asks the extension's alarm provider for the events that exist, on a thread of its own, and
/// resets the book with them. Requests that come while one waits are served with it.
class EventRefresher final : private ZrHmiSrv::IEventReceiver {
public:
    /// Whether what a target system hands over is what its logger holds; waits for nothing.
    using IsImported = std::function<bool(const std::string& target)>;

    EventRefresher(EventBook& book, ExtensionCalls& extension, Metrics& metrics,
                   IsImported isImported)
        : book(book), extension(extension), metrics(metrics), isImported(std::move(isImported)) {}
    ~EventRefresher() { stop(); }

    /// Any thread; waits for nothing. Before `start`, the request waits for it.
    void request();
    /// Refreshes once before it returns, then whenever it is requested.
    void start();
    /// Nothing is refreshed any more, once a running refresh is over.
    void cease();
    /// Ceases, and returns when a running refresh is over.
    void stop();

private:
    void run();
    bool awaitRequest();
    void refresh();
    void replace_events(const char* target_name, std::span<const ZrHmiSrv::Event> events) override;

    EventBook& book;
    ExtensionCalls& extension;
    Metrics& metrics;
    const IsImported isImported;
    bool isComplete = true;  ///< the running refresh; on the thread that refreshes
    Mutex mutex;  ///< guards the two flags; nothing is called under it
    std::condition_variable_any changed;
    bool requested GUARDED_BY(mutex) = false;
    bool stopping GUARDED_BY(mutex) = false;
    std::thread worker;
};

}  // namespace hmi
