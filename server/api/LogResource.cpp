#include "server/api/LogResource.h"

#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "server/api/LongText.h"
#include "server/json/EventJson.h"

namespace hmi {

void LogResource::addRoutes(Router& router) {
    router.add(Method::get, "/api/log", [this](const auto& r) { return read(r); });
}

Response LogResource::read(const Request& request) const {
    const Query& query = request.target.query;
    query.allowOnly({"since", "limit"});
    const auto limit = query.number("limit", std::numeric_limits<std::size_t>::max());
    const auto page = std::make_shared<const LogBook::Page>(
        book.read(query.number("since", 0), static_cast<std::size_t>(limit)));
    const std::size_t count = page->entries.size();
    return LongText{"{\"next\":" + std::to_string(page->next) + ",\"entries\":[",
                    count,
                    count * sizeof(page->entries.front()),
                    ",",
                    "]}",
                    [page](std::size_t index, std::string& to) {
                        appendJson(to, *page->entries[index]);
                    }}
        .response();
}

}  // namespace hmi
