#include "server/api/LogResource.h"

#include <limits>

#include <boost/json/array.hpp>
#include <boost/json/monotonic_resource.hpp>

#include "server/json/EventJson.h"

namespace hmi {

namespace json = boost::json;

void LogResource::addRoutes(Router& router) {
    router.add(Method::get, "/api/log", [this](const auto& r) { return read(r); });
}

Response LogResource::read(const Request& request) const {
    const Query& query = request.target.query;
    query.allowOnly({"since", "limit"});
    const auto limit = query.number("limit", std::numeric_limits<std::size_t>::max());
    const LogBook::Page page = book.read(query.number("since", 0), static_cast<std::size_t>(limit));
    json::monotonic_resource memory;
    json::array entries(&memory);
    entries.reserve(page.entries.size());
    for (const auto& entry : page.entries)
        entries.push_back(toJson(*entry, &memory));
    json::object body({{"next", page.next}}, &memory);
    body.emplace("entries", std::move(entries));
    return Response::json(std::move(body));
}

}  // namespace hmi
