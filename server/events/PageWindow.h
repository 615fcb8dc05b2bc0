#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <vector>

namespace hmi {

/// A page of two ordered lists put together: of a long one, which gives any stretch of itself, and
/// of a short one. The items of the page lie in this stretch of the long list.
struct PageWindow {
    PageWindow(std::size_t offset, std::size_t limit, std::size_t extras)
        : first(offset - std::min(offset, extras)),
          size(std::min(limit, std::numeric_limits<std::size_t>::max() - extras) + extras),
          skipped(offset - first),
          limit(limit) {}

    template <class Item, class Before>
    std::vector<Item> merge(std::vector<Item> window, std::vector<Item> extras,
                            Before before) const {
        std::vector<Item> merged;
        merged.reserve(window.size() + extras.size());
        std::merge(std::make_move_iterator(window.begin()), std::make_move_iterator(window.end()),
                   std::make_move_iterator(extras.begin()), std::make_move_iterator(extras.end()),
                   std::back_inserter(merged), before);
        const std::size_t begin = std::min(skipped, merged.size());
        merged.erase(merged.begin(), merged.begin() + static_cast<std::ptrdiff_t>(begin));
        const std::size_t size = std::min(limit, merged.size());
        merged.erase(merged.begin() + static_cast<std::ptrdiff_t>(size), merged.end());
        return merged;
    }

    std::size_t first;
    std::size_t size;

private:
    std::size_t skipped;
    std::size_t limit;
};

}  // namespace hmi
