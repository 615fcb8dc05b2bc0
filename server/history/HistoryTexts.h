#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "platform/Mutex.h"
#include "server/events/LocalizedEvent.h"
#include "server/history/HistoryTable.h"

namespace hmi {

/// Has the texts fetched that rows were written without, on a thread of its own. Thread-safe.
class HistoryTexts {
public:
    /// For each event its texts, or null when they are not known by then; they are fetched meanwhile.
    using Ask = std::function<std::vector<TextsPtr>(std::span<const EventRecordPtr>,
                                                    std::chrono::milliseconds wait)>;
    using Deliver = std::function<void(std::int64_t place, std::string text)>;

    HistoryTexts(Ask ask, Deliver deliver);
    ~HistoryTexts() { stop(); }

    /// What is known at once.
    std::vector<std::optional<std::string>> known(std::span<const EventRecordPtr> events) const;
    /// Beyond a maximum, and after some tries in vain, a row stays without its text.
    void wish(std::vector<MissingText> wishes);
    void stop();

    std::size_t pending() const;
    std::uint64_t missed() const;

private:
    struct Wish {
        MissingText row;
        int tries = 0;
    };

    void run();
    std::vector<Wish> take();
    /// False when none of them was to be had.
    bool fetch(std::vector<Wish> wanted);
    bool sleep(std::chrono::milliseconds time);

    const Ask ask;
    const Deliver deliver;
    mutable Mutex mutex;  ///< guards all below; nothing is called under it
    std::condition_variable_any changed;
    std::deque<Wish> wishes GUARDED_BY(mutex);
    std::uint64_t missing GUARDED_BY(mutex) = 0;
    bool stopping GUARDED_BY(mutex) = false;
    std::thread thread;
};

}  // namespace hmi
