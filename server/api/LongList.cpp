#include "server/api/LongList.h"

#include <utility>

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/serialize.hpp>

#include "server/api/LongText.h"

namespace hmi {

namespace json = boost::json;

Response LongList::response() && {
    const auto text = [item = std::move(item)](std::size_t index) {
        unsigned char buffer[4096];
        json::monotonic_resource memory(buffer);
        return json::serialize(item(index, &memory));
    };
    return LongText{std::move(head), count, held, ",", "]}", text}.response();
}

}  // namespace hmi
