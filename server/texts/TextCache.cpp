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

/// Of the part, by other bits of the hash than those that the part's table goes by.
std::size_t TextCache::placeOf(const TextKey& key) noexcept {
    std::size_t mixed = hash_value(key);
    boost::hash_combine(mixed, parts);
    return (mixed >> 32) % parts;
}

TextsPtr TextCache::find(const TextKey& key, Clock::time_point now) {
    Part& part = all[placeOf(key)];
    Lock lock(part.mutex);
    auto& byKey = part.entries.get<1>();
    const auto found = byKey.find(key);
    const bool isThere = found != byKey.end();
    if (isThere && now < found->until &&
        found->generation == part.generationOf(key.event->target)) {
        part.entries.relocate(part.entries.begin(), part.entries.project<0>(found));
        return found->texts;
    }
    if (isThere)
        byKey.erase(found);
    return nullptr;
}

bool TextCache::put(TextKey key, TextsPtr texts, Clock::time_point until,
                    std::uint64_t generation) {
    Part& part = all[placeOf(key)];
    Lock lock(part.mutex);
    if (generation != part.generationOf(key.event->target))
        return false;
    part.entries.get<1>().erase(key);
    part.entries.push_front({std::move(key), std::move(texts), until, generation});
    if (part.entries.size() > capacityOfPart)
        part.entries.pop_back();
    return true;
}

void TextCache::forget(const std::string& target) {
    for (Part& part : all) {
        Lock lock(part.mutex);
        ++part.generations[target];
    }
}

std::uint64_t TextCache::generationOf(const TextKey& key) const {
    const Part& part = all[placeOf(key)];
    Lock lock(part.mutex);
    return part.generationOf(key.event->target);
}

std::uint64_t TextCache::Part::generationOf(const std::string& target) const {
    const auto found = generations.find(target);
    return found == generations.end() ? 0 : found->second;
}

std::size_t TextCache::size() const {
    std::size_t size = 0;
    for (const Part& part : all) {
        Lock lock(part.mutex);
        size += part.entries.size();
    }
    return size;
}

}  // namespace hmi
