#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <boost/intrusive/set.hpp>

#include "events/EventIdentity.h"
#include "events/EventStatistics.h"
#include "events/LiveAlarmIndex.h"
#include "host/Event.h"

namespace ZrHmiEventLogger {

/// The events of a target system in the order of their time, as many as the limit allows, and the
/// live proxy alarms that some of them came from. Of an event its payload is kept, an alarm or a
/// message, as everything else that the event is to say is said there.
///
/// Events rank by key, newest first, within a key by insertion. Those whose rank is below the
/// limit (the window) stay; of the others only those with a live proxy alarm do. The window's end
/// is remembered, and as everything behind it is live, no operation has to walk there.
///
/// Has no lock of its own. It calls no proxy alarm and drops no reference to one: what leaves goes
/// to the caller or to the eviction callback. A pointer that was handed in is reset by nobody
/// while its entry is live.
template <class ScopedPointer, class Interface>
class LimitedEventContainer {
public:
    class Entry;
    /// Must not throw, nor use the container.
    using EvictionCallback = std::function<void(std::int64_t key, ZrHmiSrv::Value payload)>;

    struct Removed {
        ZrHmiSrv::Value payload;
        std::shared_ptr<ScopedPointer> pointer;  ///< null unless the entry was live
    };
    struct Released {
        std::shared_ptr<ScopedPointer> pointer;  ///< null unless the entry was live
        bool evicted;                            ///< the entry itself left
    };

    LimitedEventContainer() = default;
    LimitedEventContainer(const LimitedEventContainer&) = delete;
    LimitedEventContainer& operator=(const LimitedEventContainer&) = delete;
    ~LimitedEventContainer() { order.clear_and_dispose(std::default_delete<Entry>()); }

    /// Without one, eviction is silent.
    void setEvictionCallback(EvictionCallback callback) { evictionCallback = std::move(callback); }
    /// So many live alarms then fit without a pause to grow.
    void reserve(std::size_t liveAlarms) { live.reserve(liveAlarms); }

    /// Without a key the event goes where its time raised puts it. A pointer that holds nothing
    /// counts as none. Null: the event was evicted at once.
    Entry* insert(ZrHmiSrv::Value payload, LiveAlarm<ScopedPointer> alarm, std::int64_t limit,
                  std::optional<std::int64_t> key = {}) {
        const EventIdentity identity(payload);
        const std::int64_t place = key ? *key : identity.timeRaised.nanoseconds();
        std::unique_ptr<Entry> owned(new Entry(place, std::move(payload), identity.kind));
        Entry& entry = *owned;
        if (alarm.pointer && alarm.pointer->isHeld()) {
            const Interface* object = alarm.pointer->get();
            entry.live = &live.insert({std::move(alarm), object, identity.hostId, &entry,
                                       statistics.importedEventsCount});
        }
        link(*owned.release());
        statistics.inserted(entry.kind, entry.isLive());
        return enforce(limit, &entry) ? nullptr : &entry;
    }

    /// The live entry of this alarm, stored under the time that the key names.
    Entry* find(const AlarmKey& key) const { return live.find(key); }
    Entry* findByPointer(const Interface* object) const { return live.findByObject(object); }
    /// The live entry whose alarm has this host id.
    Entry* findById(int id) const { return live.findByHostId(id); }
    /// The first entry stored under this key, live or not, for which `matches` holds.
    template <class Predicate>
    Entry* findInGroup(std::int64_t key, Predicate matches) const {
        const auto [first, last] = order.equal_range(key);
        const auto found = std::find_if(first, last, matches);
        return found != last ? const_cast<Entry*>(&*found) : nullptr;
    }

    Removed erase(Entry& entry) { return take(entry); }

    /// The alarm is over: the event stays, unless it ranks beyond the limit.
    Released release(Entry& entry, std::int64_t limit) {
        std::shared_ptr<ScopedPointer> pointer;
        if (entry.live) {
            statistics.released();
            pointer = live.take(*std::exchange(entry.live, nullptr));
        }
        const bool evicted = enforce(limit, &entry);
        return {std::move(pointer), evicted};
    }

    /// Changes what is stored, not where. Answers what was stored before.
    ZrHmiSrv::Value replace(Entry& entry, ZrHmiSrv::Value payload) {
        const EventIdentity identity(payload);
        if (entry.live)
            live.setHostId(*entry.live, identity.hostId);
        statistics.replaced(std::exchange(entry.kind, identity.kind), identity.kind);
        return std::exchange(entry.content, std::move(payload));
    }

    /// Takes out every event that is an alarm, live or not.
    std::vector<Removed> removeAlarms() {
        std::vector<Removed> removed;
        removed.reserve(statistics.cachedAlarmsCount);
        for (auto position = order.begin(); position != order.end();) {
            Entry& entry = *position++;
            if (isAlarm(entry.kind))
                removed.push_back(take(entry));
        }
        return removed;
    }

    void enforceLimit(std::int64_t limit) { enforce(limit, nullptr); }

    /// By rank.
    auto begin() const { return order.begin(); }
    auto end() const { return order.end(); }
    /// Oldest key first, within a key in the order of insertion.
    template <class Visit>
    void visitOldestFirst(Visit visit) const {
        for (auto groupEnd = order.end(); groupEnd != order.begin();) {
            auto group = std::prev(groupEnd);
            while (group != order.begin() && std::prev(group)->key() == group->key())
                --group;
            for (auto position = group; position != groupEnd; ++position)
                visit(*position);
            groupEnd = group;
        }
    }

    std::size_t size() const { return order.size(); }
    /// Distinct keys.
    std::uint64_t keyCount() const { return groups; }
    const EventStatistics& counters() const { return statistics; }

private:
    using LiveIndex = LiveAlarmIndex<ScopedPointer, Interface, Entry>;
    using OrderHook = boost::intrusive::set_member_hook<
        boost::intrusive::link_mode<boost::intrusive::normal_link>>;

public:
    /// One event. Its address is its handle, valid until the event leaves.
    class Entry {
    public:
        std::int64_t key() const { return place; }
        const ZrHmiSrv::Value& payload() const { return content; }
        bool isLive() const { return live != nullptr; }
        /// Null unless live, as is the pointer.
        const AlarmKey* alarmKey() const { return live ? &live->alarm.key : nullptr; }
        std::shared_ptr<ScopedPointer> pointer() const {
            return live ? live->alarm.pointer : nullptr;
        }

    private:
        friend class LimitedEventContainer;
        Entry(std::int64_t place, ZrHmiSrv::Value content, EventKind kind)
            : place(place), content(std::move(content)), kind(kind) {}
        bool isEvictable() const { return outside && !live; }

        OrderHook hook;
        const std::int64_t place;
        ZrHmiSrv::Value content;
        const typename LiveIndex::Node* live = nullptr;
        EventKind kind;
        bool outside = false;  ///< of the window
    };

private:
    struct PlaceOf {
        using type = std::int64_t;
        const type& operator()(const Entry& entry) const { return entry.place; }
    };
    using Order = boost::intrusive::multiset<
        Entry, boost::intrusive::member_hook<Entry, OrderHook, &Entry::hook>,
        boost::intrusive::key_of_value<PlaceOf>, boost::intrusive::compare<std::greater<>>>;

    Entry* after(Entry& entry) {
        const auto next = std::next(order.iterator_to(entry));
        return next != order.end() ? &*next : nullptr;
    }

    /// Behind the entries of the same key; found at once for a newest key and within a burst.
    typename Order::iterator positionFor(std::int64_t place) {
        if (lastLinked && lastLinked->place == place)
            return std::next(order.iterator_to(*lastLinked));
        if (order.empty() || place > order.begin()->place)
            return order.begin();
        return order.upper_bound(place);
    }

    void link(Entry& entry) {
        const auto next = positionFor(entry.place);
        if (next == order.begin() || std::prev(next)->place != entry.place)
            ++groups;
        order.insert_before(next, entry);
        lastLinked = &entry;
        entry.outside = firstOutside && entry.place <= firstOutside->place;
        if (!entry.outside)
            ++inside;
    }

    void unlink(Entry& entry) {
        if (lastLinked == &entry)
            lastLinked = nullptr;
        if (firstOutside == &entry)
            firstOutside = after(entry);
        const auto next = order.erase(order.iterator_to(entry));
        const bool sameBehind = next != order.end() && next->place == entry.place;
        const bool sameBefore = next != order.begin() && std::prev(next)->place == entry.place;
        if (!sameBehind && !sameBefore)
            --groups;
        if (!entry.outside)
            --inside;
    }

    void moveIn() {
        firstOutside->outside = false;
        firstOutside = after(*firstOutside);
        ++inside;
    }
    void moveOut() {
        const auto end = firstOutside ? order.iterator_to(*firstOutside) : order.end();
        firstOutside = &*std::prev(end);
        firstOutside->outside = true;
        --inside;
    }

    /// Moves the window's end to the limit and evicts what that leaves outside. `changed` was
    /// inserted or released just now: the only entry that may be evictable without having been
    /// passed by the end. True: it was evicted.
    bool enforce(std::int64_t limit, Entry* changed) {
        const std::size_t target =
            std::min(order.size(), static_cast<std::size_t>(std::max<std::int64_t>(limit, 0)));
        while (inside < target)
            moveIn();
        const bool changedWasOutside = changed && changed->isEvictable();
        Entry* const formerEnd = firstOutside;
        while (inside > target)
            moveOut();
        const bool changedLeaves = changed && changed->isEvictable();
        for (Entry* entry = firstOutside; entry != formerEnd;) {
            Entry* const next = after(*entry);
            if (entry->isEvictable())
                evict(*entry);
            entry = next;
        }
        if (changedWasOutside)
            evict(*changed);
        return changedLeaves;
    }

    void evict(Entry& entry) {
        const std::int64_t key = entry.place;
        Removed removed = take(entry);
        if (evictionCallback)
            evictionCallback(key, std::move(removed.payload));
    }

    Removed take(Entry& entry) {
        unlink(entry);
        statistics.removed(entry.kind, entry.isLive());
        const std::unique_ptr<Entry> owned(&entry);
        return {std::move(entry.content), entry.live ? live.take(*entry.live) : nullptr};
    }

    Order order;
    LiveIndex live;
    EventStatistics statistics;
    std::uint64_t groups = 0;
    std::size_t inside = 0;         ///< entries in the window
    Entry* firstOutside = nullptr;  ///< the window's end; null when every entry is inside
    Entry* lastLinked = nullptr;    ///< the latest insertion, thus the last of its key
    EvictionCallback evictionCallback;
};

}  // namespace ZrHmiEventLogger
