#include "server/api/ConfigResource.h"

#include "server/config/ConfigurationWatch.h"
#include "server/json/ParseJson.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;

namespace {

ConfigurationPath pathOf(const Request& request) {
    request.target.query.allowOnly({});
    if (request.target.path.size() < 3)
        return {};
    auto path = ConfigurationPath::parse(request.target.path[2]);
    if (!path)
        throw RequestError(400, "a name of the path is empty");
    return *path;
}

/// Changes of one target system's entry come one at a time, and wait for no other's.
Place placeOfEntry(const Request& request) {
    const ConfigurationPath path = pathOf(request);
    const bool isEntry = path.depth() > 1 && path.name(0) == "TARGET_SYSTEMS";
    return {Lane::configuration, isEntry ? path.name(1) : std::string()};
}

}  // namespace

void ConfigResource::addRoutes(Router& router) {
    router.add(Method::get, "/api/config", [this](const auto& r) { return read(r); });
    router.add(Method::get, "/api/config/*", [this](const auto& r) { return read(r); });
    router.add(Method::put, "/api/config/*", placeOfEntry,
               [this](const auto& r) { return set(r); });
    router.add(Method::remove, "/api/config/*", placeOfEntry,
               [this](const auto& r) { return erase(r); });
}

Response ConfigResource::read(const Request& request) const {
    const auto value = store.get(pathOf(request));
    if (!value)
        throw RequestError(404, "there is no such value");
    return Response::json(*value);
}

Response ConfigResource::set(const Request& request) {
    try {
        return change(request, parseJson(request.body));
    } catch (const JsonError& error) {
        throw RequestError(400, error.what());
    }
}

Response ConfigResource::erase(const Request& request) {
    return change(request, std::nullopt);
}

Response ConfigResource::change(const Request& request, std::optional<json::value> value) {
    const ConfigurationPath path = pathOf(request);
    if (path.depth() == 1 && path.name(0) == "TARGET_SYSTEMS")
        throw RequestError(409, "target systems are changed one by one");
    const bool deleted = !value;
    try {
        const ConfigurationChange change =
            store.change(path, std::move(value), [&] { return tell(path, deleted); });
        const ResultPair& answer = change.answer;
        if (answer.succeeded() && !change.notKept.empty())
            return Response::json(
                {{"result", 0}, {"warning", toJson(std::string_view(change.notKept))}});
        if (answer.succeeded())
            return Response::json({{"result", 0}});
        const auto reason = answer.text().view();
        return Response::error(422, reason.empty() ? "the extension refused the change" : reason,
                               answer.result());
    } catch (const ConfigurationError& error) {
        throw RequestError(400, error.what());
    } catch (const ConfigurationConflict& error) {
        throw RequestError(409, error.what());
    }
}

ResultPair ConfigResource::tell(const ConfigurationPath& path, bool deleted) {
    const auto match = ConfigurationWatch(extension.configurationSettings()).match(path, deleted);
    if (!match)
        return ErrorValue::success;
    const std::string text = match->path.text();
    const auto answer = match->event == ConfigurationWatch::Event::valueDeleted
                            ? extension.configurationDeleted(text)
                            : extension.configurationSet(text);
    return answer.value_or(ErrorValue::success);
}

}  // namespace hmi
