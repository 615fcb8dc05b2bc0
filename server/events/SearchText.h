#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>

#include <boost/unordered/unordered_flat_map.hpp>

#include "host/Event.h"
#include "platform/Mutex.h"

namespace hmi {

using SearchTextPtr = std::shared_ptr<const std::string>;

/// Keeps one copy of what many events have in common. Thread-safe.
class SearchTexts {
public:
    SearchTextPtr share(std::string text);

private:
    static constexpr std::size_t fewTexts = 1024;

    Mutex mutex;  ///< guards all below
    /// By their hashes; of two texts with the same hash the later one has copies of its own.
    boost::unordered_flat_map<std::size_t, std::weak_ptr<const std::string>> shared
        GUARDED_BY(mutex);
    std::size_t sweepAt GUARDED_BY(mutex) = fewTexts;
};

/// What a search looks through, folded: the name and the text parameters of an event, with null
/// characters between them. Made when somebody searches for the first time. Thread-safe.
class LazySearchText {
public:
    LazySearchText() = default;
    LazySearchText(const LazySearchText&) {}
    LazySearchText& operator=(const LazySearchText&) = delete;

    /// `event` tells of which, when it has to be made.
    template <class Event>
    const std::string& get(Event event, SearchTexts& texts) const {
        std::call_once(made, [&] { text = texts.share(textOf(event())); });
        return *text;
    }

private:
    static std::string textOf(const ZrHmiSrv::Event& event);

    mutable std::once_flag made;
    mutable SearchTextPtr text;
};

}  // namespace hmi
