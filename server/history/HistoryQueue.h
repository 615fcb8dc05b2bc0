#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/Mutex.h"
#include "server/events/Change.h"
#include "server/users/Audit.h"

namespace hmi {

/// Something that somebody did, and when.
struct AuditLine {
    ZrHmiSrv::Timestamp at;
    AuditEntry entry;
};

/// The text of a row that had to be written without.
struct PlacedText {
    std::int64_t place;
    std::string text;
};

using HistoryItem = std::variant<Change, AuditLine, PlacedText>;

/// What was lost, and of which time.
struct HistoryLoss {
    std::uint64_t count = 0;
    ZrHmiSrv::Timestamp from;
    ZrHmiSrv::Timestamp to;
};

/// What waits to be written: nobody waits for room, what finds none is counted. Thread-safe.
class HistoryQueue {
public:
    explicit HistoryQueue(std::size_t capacity) : capacity(capacity) {}

    /// False when there is no room.
    bool push(HistoryItem item) noexcept;

    struct Batch {
        std::vector<HistoryItem> items;
        /// There when a loss has ended.
        std::optional<HistoryLoss> loss;
        bool isAll = false;   ///< nothing waits any more
        bool isLast = false;  ///< and nothing will
    };
    /// What has gathered: so much that it pays, or for so long that it has to be written, or nothing
    /// for a second.
    Batch take();
    /// Counts what was taken and could not be written either.
    void lose(std::uint64_t count);
    /// Waits; false when it is to stop.
    bool sleep(std::chrono::milliseconds time);
    void stop();

    /// With the batch that was taken last, until the next is.
    std::size_t size() const;
    std::uint64_t lost() const;

    static constexpr std::size_t batchSize = 5000;      ///< so much pays
    static constexpr std::size_t largestBatch = 20'000;
    static constexpr std::chrono::milliseconds gatherTime{50};

private:
    using Clock = std::chrono::steady_clock;

    void addLoss(std::uint64_t count) REQUIRES(mutex);

    const std::size_t capacity;
    mutable Mutex mutex;  ///< guards all below; short, nothing is called under it
    std::condition_variable_any changed;
    std::deque<HistoryItem> waiting GUARDED_BY(mutex);
    std::size_t taken GUARDED_BY(mutex) = 0;
    Clock::time_point since GUARDED_BY(mutex);  ///< when the first of them came
    HistoryLoss loss GUARDED_BY(mutex);
    bool isLosing GUARDED_BY(mutex) = false;  ///< since the last take
    std::uint64_t allLost GUARDED_BY(mutex) = 0;
    bool stopping GUARDED_BY(mutex) = false;
};

}  // namespace hmi
