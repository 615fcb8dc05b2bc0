#pragma once

#include <optional>
#include <string>

#include <boost/json/array.hpp>

#include "server/config/ConfigurationStore.h"
#include "server/events/EventBook.h"
#include "server/http/Router.h"

namespace hmi {

/// /api/config/check: what a change of the configuration would do. Nothing happens.
class ConfigCheckResource {
public:
    ConfigCheckResource(ConfigurationStore& store, const EventBook& book)
        : store(store), book(book) {}

    void addRoutes(Router& router);

private:
    Response check(const Request& request);
    boost::json::array targetsThatChange(const ConfigurationPreview& preview) const;
    std::size_t countOf(const std::string& target, std::optional<EventState> state) const;

    ConfigurationStore& store;
    const EventBook& book;
};

}  // namespace hmi
