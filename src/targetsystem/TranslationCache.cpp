#include "targetsystem/TranslationCache.h"

using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

TranslationCache::Finding TranslationCache::find(const TranslationKey& key) {
    Lock lock(mutex);
    const auto found = entries.get<ByKey>().find(key);
    if (found != entries.get<ByKey>().end()) {
        hits.fetch_add(1, std::memory_order_relaxed);
        auto& byUse = entries.get<ByUse>();
        byUse.relocate(byUse.end(), entries.project<ByUse>(found));
        return {found->value, nullptr, false};
    }
    misses.fetch_add(1, std::memory_order_relaxed);
    if (const auto asked = questions.find(key); asked != questions.end())
        return {Value(), asked->second, false};
    auto question = std::make_shared<Question>();
    questions.emplace(key, question);
    return {Value(), std::move(question), true};
}

void TranslationCache::settle(const TranslationKey& key, const Question& question,
                              const Answer& answer) {
    Entries::node_type evicted;  // freed after the lock
    Lock lock(mutex);
    if (!withdraw(key, question) || !answer.keep)
        return;
    auto& byUse = entries.get<ByUse>();
    byUse.push_back({key, answer.translation.value});
    if (byUse.size() > capacity)
        evicted = byUse.extract(byUse.begin());
}

/// False when the cache was cleared since the question was asked.
bool TranslationCache::withdraw(const TranslationKey& key, const Question& question) {
    const auto found = questions.find(key);
    if (found == questions.end() || found->second.get() != &question)
        return false;
    questions.erase(found);
    return true;
}

void TranslationCache::clear() {
    // What they hold is released after the lock.
    Entries formerEntries;
    Questions formerQuestions;
    Lock lock(mutex);
    entries.swap(formerEntries);
    questions.swap(formerQuestions);
}

}  // namespace ZrHmiEventLogger
