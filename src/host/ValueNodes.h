/// The shared content of vector and map values.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>

#include <boost/container/options.hpp>
#include <boost/container/vector.hpp>
#include <boost/unordered/unordered_flat_map.hpp>

#include "host/Value.h"

namespace ZrHmiSrv::detail {

/// Most containers hold a few elements and live long: 32-bit sizes and slow growth keep them lean.
template <class Element>
using CompactVector = boost::container::vector<
    Element, void,
    boost::container::vector_options_t<
        boost::container::stored_size<std::uint32_t>,
        boost::container::growth_factor<boost::container::growth_factor_60>>>;

struct VectorNode : Shareable {
    CompactVector<Value> elements;
};

/// Names in insertion order, in one allocation: the entries follow the node, which therefore moves
/// when it grows. Small maps are searched one by one, larger ones through an index.
class MapNode final : public Shareable {
public:
    static MapNode* create(std::size_t capacity = 4);
    /// With one owner. Throws, and is none, when an entry cannot be copied.
    static MapNode* copy(const MapNode& other);
    ~MapNode() { std::destroy(begin(), end()); }
    MapNode(const MapNode&) = delete;
    MapNode& operator=(const MapNode&) = delete;
    static void operator delete(void* memory) noexcept { ::operator delete(memory); }

    MapEntry* begin() noexcept { return reinterpret_cast<MapEntry*>(this + 1); }
    MapEntry* end() noexcept { return begin() + count; }
    const MapEntry* begin() const noexcept { return reinterpret_cast<const MapEntry*>(this + 1); }
    const MapEntry* end() const noexcept { return begin() + count; }
    std::size_t size() const noexcept { return count; }

    /// The entry of a name, or the end.
    const MapEntry* find(std::string_view name) const noexcept;
    MapEntry* find(std::string_view name) noexcept;
    /// The name must be new. `node` has one owner and is replaced when it must grow.
    static MapEntry& append(MapNode*& node, Text name, Value&& value) {
        if (node->count == node->capacity)
            reserve(node, std::max<std::size_t>(4, std::size_t{node->capacity} * 8 / 5));
        MapEntry& added = *::new (node->end()) MapEntry(std::move(name), std::move(value));
        if (++node->count == indexedFrom || node->index)
            node->index_last();
        return added;
    }
    static void reserve(MapNode*& node, std::size_t capacity);
    /// The entry behind the removed one.
    MapEntry* remove(MapEntry* position);

private:
    /// Positions by name; the characters are those of the entries.
    using Index =
        boost::unordered_flat_map<std::string_view, std::size_t, std::hash<std::string_view>>;
    static constexpr std::size_t indexedFrom = 17;

    explicit MapNode(std::uint32_t capacity) noexcept : capacity(capacity) {}
    /// Takes the last entry out again when that fails.
    void index_last();
    void create_index();

    std::uint32_t count = 0;
    const std::uint32_t capacity;
    std::unique_ptr<Index> index;  ///< exists once there were `indexedFrom` entries
};

}  // namespace ZrHmiSrv::detail
