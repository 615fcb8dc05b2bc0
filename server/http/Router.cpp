#include "server/http/Router.h"

#include <algorithm>

#include "server/http/MethodName.h"

namespace hmi {

namespace {

bool covers(const std::vector<std::string>& pattern, const std::vector<std::string>& path) {
    return std::equal(pattern.begin(), pattern.end(), path.begin(), path.end(),
                      [](const std::string& expected, const std::string& name) {
                          return expected == name || (expected == "*" && !name.empty());
                      });
}

}  // namespace

void Router::add(Method method, std::string_view path, Placement placement, Handler handler) {
    routes.push_back({method, Target::parse(path).path, std::move(placement), std::move(handler)});
}

void Router::addLate(Method method, std::string_view path, LateHandler handler) {
    add(method, path, {}, {});
    routes.back().lateHandler = std::move(handler);
}

void Router::limitBody(std::string_view path, std::uint64_t bytes) {
    bodyLimits.push_back({Target::parse(path).path, bytes});
}

std::uint64_t Router::bodyLimit(const std::vector<std::string>& path) const noexcept {
    constexpr std::uint64_t usual = 1 << 20;
    const auto found =
        std::find_if(bodyLimits.begin(), bodyLimits.end(),
                     [&](const BodyLimit& limit) { return covers(limit.path, path); });
    return found == bodyLimits.end() ? usual : found->bytes;
}

const Route& Router::find(const Request& request) const {
    std::string allow;
    for (const Route& route : routes) {
        if (!covers(route.path, request.target.path))
            continue;
        if (route.method == request.method)
            return route;
        allow.append(allow.empty() ? "" : ", ").append(nameOf(route.method));
    }
    if (allow.empty())
        throw RequestError(404, "there is nothing at this address");
    throw MethodError(allow);
}

}  // namespace hmi
