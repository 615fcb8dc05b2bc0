#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include <boost/container_hash/hash.hpp>

#include "platform/Mutex.h"
#include "server/events/ChangeFeed.h"
#include "server/statistics/Flood.h"
#include "server/statistics/RaiseRates.h"

namespace hmi {

/// The newest raises of alarms, as the feed tells them: one for each notification. What an import or
/// a reset hands over was not raised now and does not count. Thread-safe.
class RaiseBook final : public IChangeListener {
public:
    explicit RaiseBook(std::size_t capacity = 200'000,
                       ZrHmiSrv::Timestamp start = ZrHmiSrv::Timestamp::now())
        : capacity(capacity), since(start) {}

    bool post(const Change& change) noexcept override;
    void add(const EventRecord& alarm, ZrHmiSrv::Timestamp now);

    struct Excerpt {
        ZrHmiSrv::Timestamp since;  ///< raises from then on are known
        std::vector<Raise> raises;  ///< in order of time; one pointer for each origin
    };
    Excerpt select(ZrHmiSrv::Timestamp from) const;

    /// Of one target system.
    bool isFlooded(const std::string& target, ZrHmiSrv::Timestamp now) const;
    /// Of all together.
    bool isFlooded(ZrHmiSrv::Timestamp now) const;

private:
    struct Kind {
        EventOrigin origin;
        std::size_t raises = 0;  ///< that are held; guarded by the book's mutex
    };
    using KindPtr = std::shared_ptr<Kind>;
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(const EventOriginView& origin) const { return hash_value(origin); }
        std::size_t operator()(const KindPtr& kind) const { return hash_value(kind->origin); }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(const KindPtr& a, const KindPtr& b) const { return a->origin == b->origin; }
        bool operator()(const KindPtr& a, const EventOriginView& b) const { return a->origin == b; }
        bool operator()(const EventOriginView& a, const KindPtr& b) const { return b->origin == a; }
    };
    struct Entry {
        ZrHmiSrv::Timestamp at;
        KindPtr kind;
        std::int64_t alarm;
    };

    KindPtr kindOf(const EventRecord& alarm) REQUIRES(mutex);
    void forgetOldest() REQUIRES(mutex);

    static constexpr std::size_t maxTargets = 10'000;

    const std::size_t capacity;
    mutable Mutex mutex;                          ///< guards all below; nothing is called under it
    ZrHmiSrv::Timestamp since GUARDED_BY(mutex);  ///< nothing is missing
    std::deque<Entry> raises GUARDED_BY(mutex);   ///< in the order in which they came
    std::unordered_set<KindPtr, Hash, Equal> kinds GUARDED_BY(mutex);
    Flood flood GUARDED_BY(mutex);
    std::map<std::string, Flood> floods GUARDED_BY(mutex);
};

}  // namespace hmi
