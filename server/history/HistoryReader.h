#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "platform/Mutex.h"
#include "server/history/Database.h"
#include "server/history/HistoryQuery.h"

namespace hmi {

/// Answers queries, each with a connection of its own, which stays for the next. Thread-safe.
class HistoryReader {
public:
    using Generation = std::function<std::uint64_t()>;
    using Suspect = std::function<void(std::uint64_t generation)>;

    /// `generation`: another number for another file of that name. `suspect`: told when it is found
    /// broken.
    HistoryReader(std::filesystem::path file, Generation generation, Suspect suspect);

    /// Throws HistoryUnreadable.
    HistoryPage read(const HistoryQuery& query);

private:
    struct Idle {
        std::unique_ptr<Database> database;
        std::uint64_t generation;
    };
    Idle take();
    void giveBack(Idle used);

    static constexpr std::size_t maxIdle = 4;

    const std::filesystem::path file;
    const Generation generation;
    const Suspect suspect;
    Mutex mutex;  ///< guards `idle`; nothing is called under it
    std::vector<Idle> idle GUARDED_BY(mutex);
};

}  // namespace hmi
