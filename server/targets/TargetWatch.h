#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <string>
#include <thread>

#include "platform/Mutex.h"
#include "server/events/EventBook.h"
#include "server/targets/TargetBook.h"

namespace hmi {

/// Asks for diagnostics now and then, and tells readers of target systems that are in another state
/// now. On a thread of its own.
class TargetWatch {
public:
    /// Both wait for no runtime.
    struct Sources {
        std::function<ZrHmiSrv::Value()> diagnostics;  ///< by target system; unset: unknown
        std::function<std::map<std::string, std::string>()> addresses;
    };

    TargetWatch(TargetBook& targets, EventBook& events, IChangeSink& sink, Sources sources)
        : targets(targets), events(events), sink(sink), from(std::move(sources)) {}
    ~TargetWatch() { stop(); }

    /// Has looked once when it returns.
    void start();
    void stop();

private:
    void run();
    void look();
    void tell();
    bool sleep(std::chrono::milliseconds time);

    TargetBook& targets;
    EventBook& events;
    IChangeSink& sink;
    const Sources from;
    Mutex mutex;  ///< guards `stopping`; nothing is called under it
    std::condition_variable_any changed;
    bool stopping GUARDED_BY(mutex) = false;
    std::thread thread;
};

}  // namespace hmi
