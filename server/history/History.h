#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "server/events/ChangeFeed.h"
#include "server/events/LocalizedEvent.h"
#include "server/history/HistoryQuery.h"
#include "server/history/HistoryStatus.h"
#include "server/metrics/PrometheusText.h"
#include "server/users/Audit.h"

namespace hmi {

/// Keeps all that happens to events, beside their way: whoever tells it something waits for nothing.
/// Thread-safe.
class IHistory : public IChangeListener {
public:
    virtual ~IHistory() = default;

    /// Begins to write. Throws StartError when the file cannot be a history.
    virtual void start() = 0;
    virtual void keep(const AuditEntry& entry) = 0;
    /// Waits for the disk. Throws HistoryUnreadable.
    virtual HistoryPage read(const HistoryQuery& query) = 0;
    virtual HistoryStatus status() const = 0;
    virtual void write(PrometheusText& text) const = 0;
    /// Nothing comes any more: what waits is written.
    virtual void stop() = 0;
};

struct HistorySettings {
    std::filesystem::path file;
    std::string station = {};  ///< whose events these are; empty: there is only one
    std::int64_t days = 90;
    std::int64_t bytes = std::int64_t{4096} << 20;
    std::size_t queued = 200'000;  ///< changes that may wait
};

/// What the history asks for. None of them is called by whoever tells it something.
struct HistorySources {
    /// For each event its texts in the history's language, or null; waits so long at most.
    std::function<std::vector<TextsPtr>(std::span<const EventRecordPtr>, std::chrono::milliseconds)>
        texts;
    /// All events that there are.
    std::function<std::vector<EventRecordPtr>()> events;
    /// Told when its status is another.
    std::function<void(const HistoryStatus&)> tell;
};

/// Throws StartError when this build keeps no history.
std::unique_ptr<IHistory> openHistory(const HistorySettings& settings, HistorySources sources);

}  // namespace hmi
