#include "targetsystem/TranslationCache.h"

#include "targetsystem/RecentTranslations.h"

using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

namespace {

/// A small cache keeps to its order of use exactly.
bool isLarge(std::size_t capacity) {
    return capacity >= 1024;
}

}  // namespace

TranslationCache::TranslationCache(std::size_t capacity)
    : recentHits(isLarge(capacity) ? RecentTranslations::count : 0),
      shards(isLarge(capacity) ? 16 : 1),
      capacity(capacity) {}

std::uint64_t TranslationCache::newGeneration() {
    static std::atomic<std::uint64_t> last = 0;
    return ++last;
}

TranslationCache::Shard& TranslationCache::shardOf(const TranslationKey& key) {
    // Not the bits that its container uses first.
    return shards[key.hash() / 4096 % shards.size()];
}

TranslationCache::Finding TranslationCache::find(const TranslationKey& key) {
    if (recentHits.empty())
        return findShared(key);
    const std::uint64_t current = generation;
    const std::size_t thread = RecentTranslations::indexOfThisThread();
    RecentTranslations& recent = RecentTranslations::at(thread);
    bool isAskedForAgain = false;
    if (auto value = recent.find(current, key, isAskedForAgain)) {
        recentHits[thread].count.fetch_add(1, std::memory_order_relaxed);
        return {std::move(*value), nullptr, false};
    }
    Finding finding = findShared(key);
    if (!finding.question && isAskedForAgain)
        recent.keep(current, key, finding.value);
    return finding;
}

TranslationCache::Finding TranslationCache::findShared(const TranslationKey& key) {
    Shard& shard = shardOf(key);
    Lock lock(shard.mutex);
    auto& entries = shard.entries;
    const auto found = entries.get<ByKey>().find(key);
    if (found != entries.get<ByKey>().end()) {
        shard.hits.fetch_add(1, std::memory_order_relaxed);
        auto& byUse = entries.get<ByUse>();
        byUse.relocate(byUse.end(), entries.project<ByUse>(found));
        return {found->value, nullptr, false};
    }
    shard.misses.fetch_add(1, std::memory_order_relaxed);
    if (const auto asked = shard.questions.find(key); asked != shard.questions.end())
        return {Value(), asked->second, false};
    auto question = std::make_shared<Question>();
    shard.questions.emplace(key, question);
    return {Value(), std::move(question), true};
}

void TranslationCache::settle(const TranslationKey& key, const Question& question,
                              const Answer& answer) {
    if (keep(key, question, answer) && kept > capacity)
        evictOldest();
}

bool TranslationCache::keep(const TranslationKey& key, const Question& question,
                            const Answer& answer) {
    Shard& shard = shardOf(key);
    Lock lock(shard.mutex);
    if (!shard.withdraw(key, question) || !answer.keep)
        return false;
    shard.entries.get<ByUse>().push_back({key, answer.translation.value});
    ++kept;
    return true;
}

/// In turns, so that a shard that has more of the texts in use than others gets more of the room.
void TranslationCache::evictOldest() {
    for (std::size_t asked = 0; asked < shards.size(); ++asked) {
        if (const std::size_t evicted = shards[evictions++ % shards.size()].evictOldest()) {
            kept -= evicted;
            return;
        }
    }
}

std::size_t TranslationCache::Shard::evictOldest() {
    Entries::node_type evicted;  // freed after the lock
    Lock lock(mutex);
    auto& byUse = entries.get<ByUse>();
    if (byUse.empty())
        return 0;
    evicted = byUse.extract(byUse.begin());
    return 1;
}

/// False when the cache was cleared since the question was asked.
bool TranslationCache::Shard::withdraw(const TranslationKey& key, const Question& question) {
    const auto found = questions.find(key);
    if (found == questions.end() || found->second.get() != &question)
        return false;
    questions.erase(found);
    return true;
}

std::size_t TranslationCache::Shard::clear() {
    // What they hold is released after the lock.
    Entries formerEntries;
    Questions formerQuestions;
    Lock lock(mutex);
    entries.swap(formerEntries);
    questions.swap(formerQuestions);
    return formerEntries.size();
}

void TranslationCache::clear() {
    generation = newGeneration();
    for (Shard& shard : shards)
        kept -= shard.clear();
}

CacheStatistics TranslationCache::statistics() const {
    CacheStatistics sum;
    for (const RecentHits& recent : recentHits)
        sum.hits += recent.count.load(std::memory_order_relaxed);
    for (const Shard& shard : shards) {
        sum.hits += shard.hits.load(std::memory_order_relaxed);
        sum.misses += shard.misses.load(std::memory_order_relaxed);
    }
    return sum;
}

}  // namespace ZrHmiEventLogger
