#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>

#include <boost/multi_index/composite_key.hpp>
#include <boost/multi_index/hashed_index.hpp>
#include <boost/multi_index/mem_fun.hpp>
#include <boost/multi_index/member.hpp>
#include <boost/multi_index/ordered_index.hpp>
#include <boost/multi_index_container.hpp>

#include "events/AlarmKey.h"

namespace ZrHmiEventLogger {

/// A live proxy alarm as it is handed to the store. Its key is read beforehand, so that no look-up
/// calls the alarm.
template <class ScopedPointer>
struct LiveAlarm {
    std::shared_ptr<ScopedPointer> pointer;
    AlarmKey key;
};

/// Finds the entries with a live proxy alarm: by object and by host id in constant time, by alarm
/// key in logarithmic time however many alarms rose at once. Of several that match, the first in
/// the order of the store is found: oldest key first, within a key the order of insertion.
template <class ScopedPointer, class Interface, class Entry>
class LiveAlarmIndex {
public:
    struct Node {
        LiveAlarm<ScopedPointer> alarm;
        const Interface* object;
        std::optional<int> hostId;  ///< none unless the event's payload is an alarm
        Entry* entry;
        std::uint64_t sequence;  ///< grows with every insertion into the store

        std::int64_t timeRaised() const { return alarm.key.timeRaised.nanoseconds(); }
        std::optional<std::uint32_t> number() const { return alarm.key.number; }
        std::size_t origin() const { return alarm.key.origin; }
        std::int64_t storeKey() const { return entry->key(); }
    };

    void reserve(std::size_t count) {
        nodes.template get<ByObject>().reserve(count);
        nodes.template get<ByHostId>().reserve(count);
    }

    /// The node stays at its address until it is taken out.
    const Node& insert(Node node) { return *nodes.insert(std::move(node)).first; }

    /// The caller gets what keeps the alarm alive.
    std::shared_ptr<ScopedPointer> take(const Node& node) {
        return std::move(nodes.extract(nodes.iterator_to(node)).value().alarm.pointer);
    }

    void setHostId(const Node& node, std::optional<int> hostId) {
        nodes.modify(nodes.iterator_to(node), [&](Node& changed) { changed.hostId = hostId; });
    }

    /// An alarm is looked for among the entries stored under its own time only.
    Entry* find(const AlarmKey& key) const {
        const std::int64_t time = key.timeRaised.nanoseconds();
        const auto found =
            nodes.template get<ByKey>().find(std::tuple(time, key.number, key.origin, time));
        return found != nodes.template get<ByKey>().end() ? found->entry : nullptr;
    }
    Entry* findByObject(const Interface* object) const {
        return first(nodes.template get<ByObject>().equal_range(object));
    }
    Entry* findByHostId(int id) const {
        return first(nodes.template get<ByHostId>().equal_range(std::optional<int>(id)));
    }

private:
    struct ByObject {};
    struct ByHostId {};
    struct ByKey {};

    /// Equal keys stay in the order of insertion.
    using ByKeyIndex = boost::multi_index::ordered_non_unique<
        boost::multi_index::tag<ByKey>,
        boost::multi_index::composite_key<
            Node, boost::multi_index::const_mem_fun<Node, std::int64_t, &Node::timeRaised>,
            boost::multi_index::const_mem_fun<Node, std::optional<std::uint32_t>, &Node::number>,
            boost::multi_index::const_mem_fun<Node, std::size_t, &Node::origin>,
            boost::multi_index::const_mem_fun<Node, std::int64_t, &Node::storeKey>>>;
    /// Objects that were made one after another stand side by side, as they are looked for.
    struct HashOfObject {
        std::size_t operator()(const Interface* object) const {
            constexpr std::size_t size = 64;  // no object is much smaller
            return reinterpret_cast<std::uintptr_t>(object) / size;
        }
    };
    using Nodes = boost::multi_index_container<
        Node, boost::multi_index::indexed_by<
                  boost::multi_index::hashed_non_unique<
                      boost::multi_index::tag<ByObject>,
                      boost::multi_index::member<Node, const Interface*, &Node::object>,
                      HashOfObject>,
                  boost::multi_index::hashed_non_unique<
                      boost::multi_index::tag<ByHostId>,
                      boost::multi_index::member<Node, std::optional<int>, &Node::hostId>,
                      std::hash<std::optional<int>>>,
                  ByKeyIndex>>;

    /// Objects and ids are as good as unique; the few that share one are compared.
    template <class Iterator>
    static Entry* first(std::pair<Iterator, Iterator> range) {
        const auto found =
            std::min_element(range.first, range.second, [](const Node& a, const Node& b) {
                return std::tuple(a.storeKey(), a.sequence) < std::tuple(b.storeKey(), b.sequence);
            });
        return found != range.second ? found->entry : nullptr;
    }

    Nodes nodes;
};

}  // namespace ZrHmiEventLogger
