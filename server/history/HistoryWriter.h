#pragma once

#include <atomic>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "server/history/EventLives.h"
#include "server/history/HistoryQueue.h"
#include "server/history/HistoryStatus.h"
#include "server/history/HistoryTexts.h"
#include "server/history/Retention.h"

namespace hmi {

/// Writes what waits in the queue, in batches, on a thread of its own. While nothing can be written
/// it tries again every second; a file that breaks is set aside and a new one begun.
class HistoryWriter {
public:
    struct Settings {
        std::filesystem::path file;
        std::string station;
        Retention::Limits limits;
    };
    /// All events that there are, to bring back what the history lost of them.
    using Snapshot = std::function<std::vector<EventRecordPtr>()>;
    /// Told when the state is another. On the writer's thread, with no lock held.
    using Tell = std::function<void()>;

    HistoryWriter(Settings settings, HistoryQueue& queue, HistoryTexts& texts, Snapshot snapshot,
                  Tell tell);
    ~HistoryWriter();

    /// Opens the file. Throws StartError when it cannot be one; any other failure may pass.
    void start();
    /// Writes what waits, as far as that can be.
    void stop();
    /// A reader has found the file of that generation broken.
    void suspect(std::uint64_t ofGeneration) noexcept { suspected = ofGeneration; }
    /// Another number whenever a new file was begun. Any thread.
    std::uint64_t generation() const noexcept { return files; }
    HistoryStatus status() const;

private:
    struct Open;

    void run();
    void write(HistoryQueue::Batch& batch);
    bool tryToWrite(const HistoryQueue::Batch& batch);
    void writeItem(const HistoryItem& item);
    void writeItem(const Change& change);
    void writeItem(const AuditLine& line);
    void writeItem(const PlacedText& text);
    void writeGap(const HistoryLoss& loss);
    void bringBack();
    void maintain();
    void open();
    void onFailure(const DatabaseError& error);
    void enter(HistoryStatus::State state, const std::string& error = {});

    const Settings settings;
    HistoryQueue& queue;
    HistoryTexts& texts;
    const Snapshot snapshot;
    const Tell tell;
    // The writer's thread only, once it runs.
    std::unique_ptr<Open> file;  ///< null while it cannot be opened
    bool hasLost = false;        ///< what is there has to be gone through again
    std::uint64_t rejected = 0;  ///< of a batch: items that cannot be written

    std::atomic<std::uint64_t> suspected = 0;
    std::atomic<std::uint64_t> files = 0;
    mutable Mutex mutex;  ///< guards `current`
    HistoryStatus current GUARDED_BY(mutex);
    std::thread thread;
};

}  // namespace hmi
