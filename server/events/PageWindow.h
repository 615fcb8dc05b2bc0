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
    std::vector<Item> merge(const std::vector<Item>& window, const std::vector<Item>& extras,
                            Before before) const {
        std::vector<Item> merged;
        merged.reserve(window.size() + extras.size());
        std::merge(window.begin(), window.end(), extras.begin(), extras.end(),
                   std::back_inserter(merged), before);
        const std::size_t begin = std::min(skipped, merged.size());
        const std::size_t end = begin + std::min(limit, merged.size() - begin);
        return {merged.begin() + static_cast<std::ptrdiff_t>(begin),
                merged.begin() + static_cast<std::ptrdiff_t>(end)};
    }

    std::size_t first;
    std::size_t size;

private:
    std::size_t skipped;
    std::size_t limit;
};

}  // namespace hmi
