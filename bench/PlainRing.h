#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include <boost/circular_buffer.hpp>

/// The least that keeping the newest can cost: what a store is held against.
template <class Item>
class PlainRing {
public:
    static constexpr const char* name = "ring";
    explicit PlainRing(std::size_t limit, std::int64_t = 0) : items(limit) {}
    void insert(Item item) { items.push_back(std::move(item)); }

private:
    boost::circular_buffer<Item> items;
};
