#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "server/http/Response.h"

namespace hmi {

/// A body of many items. A long one is made part by part while it is sent, so that it never stands
/// in memory as a whole.
struct LongText {
    std::string head;       ///< the text up to the first item
    std::size_t count;      ///< of items
    std::size_t held;       ///< bytes that the items keep alive
    std::string separator;  ///< between two items
    std::string tail;       ///< the text after the last item
    /// Writes an item to the end of the text. Called for each item once, in their order; on one
    /// thread at a time.
    std::function<void(std::size_t index, std::string& to)> item;

    Response response() &&;
};

}  // namespace hmi
