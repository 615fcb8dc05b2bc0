#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include <boost/container_hash/hash.hpp>

#include "platform/Mutex.h"
#include "server/events/ChangeFeed.h"
#include "server/lanes/WorkerLanes.h"
#include "server/metrics/PrometheusText.h"
#include "server/texts/TextCache.h"
#include "server/texts/TextNews.h"

namespace hmi {

/// The localized texts of lists. They are fetched beside the requests, so that no list waits for a
/// runtime longer than it wants to. What is known of a target system is forgotten when it has been
/// imported or replaced: its texts may be others now. Thread-safe.
class EventTextService final : public IChangeListener {
public:
    /// Asks the extension, as long as that takes; nothing when it localizes nothing.
    using Localize =
        std::function<std::optional<EventTexts>(const EventRecord&, const std::string& locale)>;

    /// Texts that somebody had to go without are told to `sink` when they have come.
    EventTextService(Localize localize, WorkerLanes& lanes, IChangeSink& sink);

    /// For each event its texts, or what has failed in place of them, or null when neither is
    /// known within `wait`. What is not known is fetched, at most `maxAsked` of them.
    std::vector<TextsPtr> get(std::span<const EventRecordPtr> events, const std::string& locale,
                              std::chrono::milliseconds wait);

    bool post(const Change& change) noexcept override;
    /// Nobody waits any more, and nothing is told any more when it returns.
    void stop();
    void write(PrometheusText& text) const;

    /// So that one search does not push everybody's texts out of the extension's memory.
    static constexpr std::size_t maxAsked = 1000;

private:
    using Clock = TextCache::Clock;

    /// The texts that one reader waits for.
    struct Batch {
        std::size_t outstanding = 0;
        bool givenUp = false;
    };
    using BatchPtr = std::shared_ptr<Batch>;
    struct Fetch {
        std::uint64_t generation;
        std::vector<BatchPtr> readers;
    };

    std::vector<TextKey> join(std::span<const TextKey> missing, const BatchPtr& batch);
    void await(Batch& batch, Clock::time_point end);
    void start(const TextKey& key);
    void fetch(const TextKey& key);
    bool isHushed(const std::string& target);
    void hush(const std::string& target);
    void finish(const TextKey& key, TextsPtr texts);
    /// They stay unknown; readers are told when to ask again.
    void postpone(const TextKey& key);
    bool release(const TextKey& key) REQUIRES(mutex);
    void forget(const std::string& target);

    const Localize localize;
    WorkerLanes& lanes;
    TextCache known{32'768};
    std::atomic<std::uint64_t> hits = 0;
    std::atomic<std::uint64_t> misses = 0;
    mutable Mutex mutex;  ///< guards all below; nothing but the cache is called under it
    std::condition_variable_any changed;
    std::unordered_map<TextKey, Fetch, boost::hash<TextKey>> fetches GUARDED_BY(mutex);
    std::map<std::string, Clock::time_point> hushed GUARDED_BY(mutex);  ///< until then not asked
    std::uint64_t succeeded GUARDED_BY(mutex) = 0;
    std::uint64_t failed GUARDED_BY(mutex) = 0;
    std::uint64_t postponed GUARDED_BY(mutex) = 0;
    bool stopping GUARDED_BY(mutex) = false;
    TextNews news;
};

}  // namespace hmi
