#include "server/api/LongList.h"

#include <utility>

#include <boost/json/monotonic_resource.hpp>
#include <boost/json/serialize.hpp>

namespace hmi {

namespace json = boost::json;

namespace {

constexpr std::size_t partSize = 64 << 10;

/// Makes the parts, one a call.
class Parts {
public:
    explicit Parts(LongList list) : list(std::move(list)) {}

    std::string operator()() {
        std::string part = std::exchange(list.head, {});
        while (next < list.count && part.size() < partSize) {
            part += next == 0 ? "" : ",";
            part += itemText();
        }
        if (next == list.count && !std::exchange(ended, true))
            part += "]}";
        return part;
    }

    bool isDone() const noexcept { return ended; }

private:
    std::string itemText() {
        unsigned char buffer[4096];
        json::monotonic_resource memory(buffer);
        return json::serialize(list.item(next++, &memory));
    }

    LongList list;
    std::size_t next = 0;
    bool ended = false;
};

}  // namespace

Response LongList::response() && {
    Response response;
    const std::size_t bytes = held;
    Parts parts(std::move(*this));
    std::string first = parts();
    if (parts.isDone()) {
        response.body = std::move(first);
        return response;
    }
    response.held = bytes + partSize;
    response.parts = [first = std::move(first), parts = std::move(parts)]() mutable {
        return first.empty() ? parts() : std::exchange(first, {});
    };
    return response;
}

}  // namespace hmi
