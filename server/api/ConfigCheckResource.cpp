#include "server/api/ConfigCheckResource.h"

#include <set>
#include <string_view>

#include <boost/json/value.hpp>

#include "server/json/ParseJson.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;

namespace {

struct Wish {
    ConfigurationPath path;
    std::optional<json::value> value;  ///< none: to delete
};

Wish wishOf(const Request& request) {
    request.target.query.allowOnly({});
    try {
        const json::value body = parseJson(request.body);
        const json::object* const object = body.if_object();
        const json::value* const path = object ? object->if_contains("path") : nullptr;
        const json::value* const value = object ? object->if_contains("value") : nullptr;
        if (!path || !path->is_string() || object->size() != (value ? 2U : 1U))
            throw RequestError(400, "expected {\"path\": text, \"value\": any}");
        auto parsed = ConfigurationPath::parse(std::string_view(path->get_string()));
        if (!parsed || parsed->depth() == 0)
            throw RequestError(400, "a name of the path is empty");
        return {std::move(*parsed), value ? std::optional(*value) : std::nullopt};
    } catch (const JsonError& error) {
        throw RequestError(400, error.what());
    }
}

const json::object& targetsOf(const json::value& configuration) {
    static const json::object none;
    const json::object* const root = configuration.if_object();
    const json::value* const targets = root ? root->if_contains("TARGET_SYSTEMS") : nullptr;
    return targets && targets->is_object() ? targets->get_object() : none;
}

Response refused(std::string_view why) {
    return Response::json(
        {{"accepted", false}, {"error", toJson(why)}, {"targets", json::array()}});
}

}  // namespace

void ConfigCheckResource::addRoutes(Router& router) {
    // It reads and writes out all of a configuration, but waits for no change of it.
    router.add(
        Method::post, "/api/config/check", [](const Request&) { return Place{Lane::longLists}; },
        [this](const Request& request) { return check(request); });
}

Response ConfigCheckResource::check(const Request& request) {
    const Wish wish = wishOf(request);
    if (wish.path.depth() == 1 && wish.path.name(0) == "TARGET_SYSTEMS")
        return refused("target systems are changed one by one");
    try {
        const ConfigurationPreview preview = store.preview(wish.path, wish.value);
        if (!preview.isComplete)
            return refused("the entry is not complete");
        return Response::json({{"accepted", true}, {"targets", targetsThatChange(preview)}});
    } catch (const ConfigurationError& error) {
        return refused(error.what());
    } catch (const ConfigurationConflict& error) {
        return refused(error.what());
    }
}

json::array ConfigCheckResource::targetsThatChange(const ConfigurationPreview& preview) const {
    const json::object& before = targetsOf(preview.before);
    const json::object& after = targetsOf(preview.after);
    std::set<std::string> names;
    for (const json::object* const entries : {&before, &after}) {
        for (const json::key_value_pair& entry : *entries)
            names.emplace(entry.key());
    }
    json::array targets;
    for (const std::string& name : names) {
        const json::value* const former = before.if_contains(name);
        const json::value* const next = after.if_contains(name);
        if (former && next && *former == *next)
            continue;
        targets.push_back({{"name", name},
                           {"change", !former ? "added"
                                      : !next ? "removed"
                                              : "replaced"},
                           {"eventsLeaving", former ? countOf(name, std::nullopt) : 0},
                           {"unconfirmed", former ? countOf(name, EventState::unconfirmed) : 0}});
    }
    return targets;
}

std::size_t ConfigCheckResource::countOf(const std::string& target,
                                         std::optional<EventState> state) const {
    EventFilter filter;
    filter.target = target;
    filter.state = state;
    filter.lastKnown = true;
    return book.select(filter, 0, 0).total;
}

}  // namespace hmi
