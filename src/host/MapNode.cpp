#include "host/ValueNodes.h"

namespace ZrHmiSrv::detail {

namespace {

/// Names that differ mostly do so in their length or at their end.
bool is_equal(std::string_view a, std::string_view b) noexcept {
    return a.size() == b.size() && (a.empty() || (a.back() == b.back() && a == b));
}

}  // namespace

MapNode::MapNode(const MapNode& other)
    : Shareable(other),
      entries(other.entries),
      index(other.index ? std::make_unique<Index>(*other.index) : nullptr) {}

const MapEntry* MapNode::find(std::string_view name) const noexcept {
    if (!index)
        return std::find_if(begin(), end(),
                            [name](const MapEntry& entry) { return is_equal(entry.name.view(), name); });
    const auto found = index->find(name);
    return found == index->end() ? end() : begin() + found->second;
}

MapEntry* MapNode::find(std::string_view name) noexcept {
    return begin() + (std::as_const(*this).find(name) - begin());
}

MapEntry& MapNode::append(Text&& name, Value&& value) {
    constexpr std::size_t firstCapacity = 4;
    if (entries.empty())
        entries.reserve(firstCapacity);
    MapEntry& added = entries.emplace_back(std::move(name), std::move(value));
    try {
        if (index)
            index->emplace(added.name.view(), entries.size() - 1);
        else if (entries.size() == indexedFrom)
            create_index();
    } catch (...) {
        entries.pop_back();
        throw;
    }
    return added;
}

MapEntry* MapNode::remove(MapEntry* position) {
    const auto removed = static_cast<std::size_t>(position - begin());
    if (index) {
        index->erase(position->name.view());
        for (auto& [name, behind] : *index)
            behind -= behind > removed ? 1 : 0;
    }
    entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(removed));
    return begin() + removed;
}

void MapNode::reserve(std::size_t count) {
    entries.reserve(count);
    if (index)
        index->reserve(count);
}

void MapNode::create_index() {
    auto created = std::make_unique<Index>();
    created->reserve(entries.capacity());
    for (std::size_t position = 0; position < entries.size(); ++position)
        created->emplace(entries[position].name.view(), position);
    index = std::move(created);
}

}  // namespace ZrHmiSrv::detail
