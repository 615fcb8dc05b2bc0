#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include <boost/json/object.hpp>

#include "server/http/Response.h"

namespace hmi {

/// A JSON object whose last member is an array of many objects, as a long text.
struct LongList {
    std::string head;   ///< the text up to the array's first item
    std::size_t count;  ///< of items
    std::size_t held;   ///< bytes that the items keep alive
    /// Called for each item once, in their order; on one thread at a time.
    std::function<boost::json::object(std::size_t index, boost::json::storage_ptr)> item;

    Response response() &&;
};

}  // namespace hmi
