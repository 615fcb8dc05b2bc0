#include "server/texts/TextCache.h"

#include <utility>

#include <boost/container_hash/hash.hpp>

namespace hmi {

bool operator==(const TextKey& a, const TextKey& b) {
    if (a.locale != b.locale)
        return false;
    if (a.event == b.event)
        return true;
    return a.event->payloadHash() == b.event->payloadHash() && a.event->kind == b.event->kind &&
           a.event->event().name() == b.event->event().name() &&
           a.event->event().domain() == b.event->event().domain() &&
           a.event->event().payload() == b.event->event().payload();
}

std::size_t hash_value(const TextKey& key) noexcept {
    std::size_t hash = key.event->payloadHash();
    boost::hash_combine(hash, key.locale);
    return hash;
}

TextsPtr TextCache::find(const TextKey& key, Clock::time_point now) {
    auto& byKey = entries.get<1>();
    const auto found = byKey.find(key);
    if (found == byKey.end())
        return nullptr;
    if (found->until <= now || found->generation != generationOf(key.event->target)) {
        byKey.erase(found);
        return nullptr;
    }
    entries.relocate(entries.begin(), entries.project<0>(found));
    return found->texts;
}

void TextCache::put(TextKey key, TextsPtr texts, Clock::time_point until) {
    const std::uint64_t generation = generationOf(key.event->target);
    entries.get<1>().erase(key);
    entries.push_front({std::move(key), std::move(texts), until, generation});
    if (entries.size() > capacity)
        entries.pop_back();
}

std::uint64_t TextCache::generationOf(const std::string& target) const {
    const auto found = generations.find(target);
    return found == generations.end() ? 0 : found->second;
}

}  // namespace hmi
