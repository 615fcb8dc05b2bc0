#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/identity.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index/sequenced_index.hpp>
#include <boost/multi_index_container.hpp>

#include "server/events/LocalizedEvent.h"

namespace hmi {

/// What a text depends on: the content of an event and the locale. Events that differ in their
/// times only share their texts.
struct TextKey {
    EventRecordPtr event;
    std::string locale;

    friend bool operator==(const TextKey& a, const TextKey& b);
};
std::size_t hash_value(const TextKey& key) noexcept;

/// Texts that are known, the least recently used of which make room. Not synchronised.
class TextCache {
public:
    using Clock = std::chrono::steady_clock;
    explicit TextCache(std::size_t capacity) : capacity(capacity) {}

    /// Null when it is not known, or has been forgotten, or its time is over.
    TextsPtr find(const TextKey& key, Clock::time_point now);
    void put(TextKey key, TextsPtr texts, Clock::time_point until);
    /// Forgets the texts of a target system, in no time.
    void forget(const std::string& target) { ++generations[target]; }
    /// Another number after each `forget`.
    std::uint64_t generationOf(const std::string& target) const;
    std::size_t size() const noexcept { return entries.size(); }

private:
    struct Entry {
        TextKey key;
        TextsPtr texts;
        Clock::time_point until;
        std::uint64_t generation;
    };
    using Entries = boost::multi_index_container<
        Entry,
        boost::multi_index::indexed_by<boost::multi_index::sequenced<>,
                                       boost::multi_index::hashed_unique<boost::multi_index::member<
                                           Entry, TextKey, &Entry::key>>>>;

    const std::size_t capacity;
    Entries entries;  ///< the most recently used first
    std::map<std::string, std::uint64_t> generations;
};

}  // namespace hmi
