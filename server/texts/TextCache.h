#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/identity.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index/sequenced_index.hpp>
#include <boost/multi_index_container.hpp>

#include "platform/Mutex.h"
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

/// Texts that are known, the least recently used of which make room. Thread-safe: readers meet in
/// one of many parts only.
class TextCache {
public:
    using Clock = std::chrono::steady_clock;
    /// A little more than `capacity`, since the parts do not fill alike.
    explicit TextCache(std::size_t capacity)
        : capacityOfPart(capacity / parts + capacity / parts / 8) {}

    /// Null when it is not known, or has been forgotten, or its time is over.
    TextsPtr find(const TextKey& key, Clock::time_point now);
    /// Unless they have been forgotten since there was this generation.
    bool put(TextKey key, TextsPtr texts, Clock::time_point until, std::uint64_t generation);
    /// Forgets the texts of a target system, in no time.
    void forget(const std::string& target);
    /// Of the target system of these texts: another number after each `forget`.
    std::uint64_t generationOf(const TextKey& key) const;
    std::size_t size() const;

private:
    static constexpr std::size_t parts = 16;

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
    struct Part {
        std::uint64_t generationOf(const std::string& target) const REQUIRES(mutex);

        mutable Mutex mutex;  ///< guards all below; nothing is called under it
        Entries entries GUARDED_BY(mutex);  ///< the most recently used first
        std::map<std::string, std::uint64_t> generations GUARDED_BY(mutex);
    };

    static std::size_t placeOf(const TextKey& key) noexcept;

    const std::size_t capacityOfPart;
    std::array<Part, parts> all;
};

}  // namespace hmi
