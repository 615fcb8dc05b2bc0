#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <future>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index/sequenced_index.hpp>
#include <boost/multi_index_container.hpp>

#include "host/Result.h"
#include "host/Value.h"
#include "platform/Mutex.h"
#include "targetsystem/TranslationKey.h"

namespace ZrHmiEventLogger {

/// What a look-up comes to: a success and the translation, or what to tell the client.
struct Translation {
    ZrHmiSrv::ResultPair result;
    ZrHmiSrv::Value value;
};

struct CacheStatistics {
    std::uint64_t hits = 0;
    std::uint64_t misses = 0;  ///< also those that were served by another thread's question
    friend bool operator==(const CacheStatistics&, const CacheStatistics&) = default;
};

/// Translations that were looked up before; the least recently used goes first. A large cache is
/// made of shards, each with its own order of use, so that threads that look up different keys
/// seldom wait for each other; they share the capacity, and take turns in giving up their oldest.
/// What a thread looked up in it lately it finds again without meeting another thread.
/// Threads that miss the same key at a time share one question. Any thread.
class TranslationCache {
public:
    /// Of one target system.
    static constexpr std::size_t defaultCapacity = 4096;

    struct Answer {
        Translation translation;
        bool keep = false;
    };

    explicit TranslationCache(std::size_t capacity = defaultCapacity);

    /// The kept translation, otherwise what `ask` answers: an Answer. It is called without a lock,
    /// on the thread that misses the key first; those that miss it meanwhile wait without a lock
    /// and take the same answer, also when it is a failure. An exception is its own thread's alone:
    /// one of the others asks then. An answer that was asked for before the last `clear` is not
    /// kept.
    template <class Ask>
    Translation get(const TranslationKey& key, Ask ask);

    void clear();
    CacheStatistics statistics() const;
    std::size_t size() const { return kept; }

private:
    /// A question that is being asked. None is its answer when asking threw.
    struct Question {
        std::promise<std::optional<Translation>> promise;
        std::shared_future<std::optional<Translation>> answer = promise.get_future().share();
    };
    using QuestionPointer = std::shared_ptr<Question>;
    using Questions = std::unordered_map<TranslationKey, QuestionPointer, HashOfTranslationKey>;

    /// The kept translation, or else the question, which is new or another thread's.
    struct Finding {
        ZrHmiSrv::Value value;
        QuestionPointer question;
        bool isNew = false;
    };

    struct Entry {
        TranslationKey key;
        ZrHmiSrv::Value value;
    };
    struct ByKey;
    struct ByUse;
    using Entries = boost::multi_index_container<
        Entry, boost::multi_index::indexed_by<
                   boost::multi_index::hashed_unique<
                       boost::multi_index::tag<ByKey>,
                       boost::multi_index::member<Entry, TranslationKey, &Entry::key>,
                       HashOfTranslationKey>,
                   boost::multi_index::sequenced<boost::multi_index::tag<ByUse>>>>;

    /// On cache lines of its own.
    struct alignas(64) Shard {
        /// Never held across a question, a wait or the end of a translation's life.
        Mutex mutex;
        Entries entries GUARDED_BY(mutex);      ///< in their order of use, the latest last
        Questions questions GUARDED_BY(mutex);  ///< those that an answer may be kept of
        std::atomic<std::uint64_t> hits = 0;
        std::atomic<std::uint64_t> misses = 0;

        bool withdraw(const TranslationKey& key, const Question& question) REQUIRES(mutex);
        /// Answer how many left.
        std::size_t evictOldest() EXCLUDES(mutex);
        std::size_t clear() EXCLUDES(mutex);
    };

    /// Of one thread or a few, on cache lines of their own.
    struct alignas(64) RecentHits {
        std::atomic<std::uint64_t> count = 0;
    };

    static std::uint64_t newGeneration();
    Shard& shardOf(const TranslationKey& key);
    Finding find(const TranslationKey& key);
    Finding findShared(const TranslationKey& key);
    template <class Ask>
    Translation lead(const TranslationKey& key, Question& question, Ask& ask);
    void settle(const TranslationKey& key, const Question& question, const Answer& answer);
    bool keep(const TranslationKey& key, const Question& question, const Answer& answer);
    void evictOldest();

    /// What is found among the recent ones; another one after every `clear`. Seldom written.
    alignas(64) std::atomic<std::uint64_t> generation = newGeneration();
    std::vector<RecentHits> recentHits;  ///< none: the cache is small
    std::vector<Shard> shards;
    const std::size_t capacity;  ///< of all shards
    std::atomic<std::size_t> kept = 0;  ///< in all shards; more only until those are evicted
    std::atomic<std::size_t> evictions = 0;
};

template <class Ask>
Translation TranslationCache::get(const TranslationKey& key, Ask ask) {
    for (;;) {
        Finding finding = find(key);
        if (!finding.question)
            return {ZrHmiSrv::ResultPair(), std::move(finding.value)};
        if (finding.isNew)
            return lead(key, *finding.question, ask);
        if (const auto& answer = finding.question->answer.get())
            return *answer;
    }
}

template <class Ask>
Translation TranslationCache::lead(const TranslationKey& key, Question& question, Ask& ask) {
    try {
        const Answer answer = ask();
        settle(key, question, answer);
        question.promise.set_value(answer.translation);
        return answer.translation;
    } catch (...) {
        settle(key, question, {});
        question.promise.set_value(std::nullopt);
        throw;
    }
}

}  // namespace ZrHmiEventLogger
