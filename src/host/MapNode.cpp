#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "host/ValueNodes.h"

namespace ZrHmiSrv::detail {

static_assert(sizeof(MapNode) % alignof(MapEntry) == 0 && alignof(MapNode) >= alignof(MapEntry));

namespace {

/// Names that differ mostly do so in their length or at their end.
bool is_equal(std::string_view a, std::string_view b) noexcept {
    return a.size() == b.size() && (a.empty() || (a.back() == b.back() && a == b));
}

}  // namespace

MapNode* MapNode::create(std::size_t capacity) {
    if (capacity > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("map too large");
    void* const memory = ::operator new(sizeof(MapNode) + capacity * sizeof(MapEntry));
    return ::new (memory) MapNode(static_cast<std::uint32_t>(capacity));
}

MapNode* MapNode::copy(const MapNode& other) {
    std::unique_ptr<MapNode> made(create(other.count));
    for (const MapEntry& entry : other) {
        ::new (made->end()) MapEntry(entry);
        ++made->count;
    }
    if (other.index)
        made->index = std::make_unique<Index>(*other.index);
    return made.release();
}

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

void MapNode::index_last() {
    MapEntry& last = *(end() - 1);
    try {
        if (index)
            index->emplace(last.name.view(), count - 1);
        else
            create_index();
    } catch (...) {
        std::destroy_at(&last);
        --count;
        throw;
    }
}

void MapNode::reserve(MapNode*& node, std::size_t capacity) {
    if (capacity <= node->capacity)
        return;
    if (node->index)
        node->index->reserve(capacity);
    MapNode* const larger = create(capacity);
    std::uninitialized_move(node->begin(), node->end(), larger->begin());
    larger->count = node->count;
    larger->index = std::move(node->index);
    if (node->is_exposed())
        larger->expose();
    delete std::exchange(node, larger);
}

MapEntry* MapNode::remove(MapEntry* position) {
    const auto removed = static_cast<std::size_t>(position - begin());
    if (index) {
        index->erase(position->name.view());
        for (auto& [name, behind] : *index)
            behind -= behind > removed ? 1 : 0;
    }
    std::move(position + 1, end(), position);
    std::destroy_at(end() - 1);
    --count;
    return position;
}

void MapNode::create_index() {
    auto created = std::make_unique<Index>();
    created->reserve(capacity);
    for (std::size_t position = 0; position < count; ++position)
        created->emplace(begin()[position].name.view(), position);
    index = std::move(created);
}

}  // namespace ZrHmiSrv::detail
