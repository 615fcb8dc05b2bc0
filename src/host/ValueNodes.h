/// The shared content of vector and map values.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
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

/// Names in insertion order. Small maps are searched one by one, larger ones through an index.
class MapNode : public Shareable {
public:
    MapNode() = default;
    MapNode(const MapNode& other);

    MapEntry* begin() noexcept { return entries.data(); }
    MapEntry* end() noexcept { return entries.data() + entries.size(); }
    const MapEntry* begin() const noexcept { return entries.data(); }
    const MapEntry* end() const noexcept { return entries.data() + entries.size(); }
    std::size_t size() const noexcept { return entries.size(); }

    /// The entry of a name, or the end.
    const MapEntry* find(std::string_view name) const noexcept;
    MapEntry* find(std::string_view name) noexcept;
    /// The name must be new.
    MapEntry& append(Text&& name, Value&& value);
    /// The entry behind the removed one.
    MapEntry* remove(MapEntry* position);
    void reserve(std::size_t count);

private:
    /// Positions by name; the characters are those of the entries.
    using Index =
        boost::unordered_flat_map<std::string_view, std::size_t, std::hash<std::string_view>>;
    static constexpr std::size_t indexedFrom = 17;

    void create_index();

    CompactVector<MapEntry> entries;
    std::unique_ptr<Index> index;  ///< exists once there were `indexedFrom` entries
};

}  // namespace ZrHmiSrv::detail
