#include "server/users/SessionResource.h"

#include <chrono>

#include "server/json/ValueJson.h"

namespace hmi {

void SessionResource::addRoutes(Router& router) {
    router.add(Method::get, "/api/session",
               [this](const Request& request) { return who(request); });
    router.add(Method::post, "/api/session",
               [this](const Request& request) { return open(request); });
    router.add(Method::remove, "/api/session",
               [this](const Request& request) { return close(request); });
    router.limitBody("/api/session", 4 << 10);
}

Response SessionResource::who(const Request& request) const {
    request.target.query.allowOnly({});
    if (access.hasUsers() && request.user.empty())
        return Response::error(401, "nobody has signed in");
    const Role role = access.roleOf(request.user);
    boost::json::object body{{"role", nameOf(role)}};
    body["user"] = request.user.empty() ? boost::json::value()
                                        : toJson(std::string_view(request.user));
    return Response::json(body);
}

/// The password has been checked before the request came here.
Response SessionResource::open(const Request& request) {
    request.target.query.allowOnly({});
    if (!access.hasUsers())
        throw RequestError(404, "nobody is asked who they are");
    using std::chrono::seconds;
    return withCookie(request, who(request), access.openSession(request),
                      seconds(Sessions::lifetime).count());
}

Response SessionResource::close(const Request& request) {
    request.target.query.allowOnly({});
    access.closeSession(request.cookie);
    return withCookie(request, Response::json(boost::json::object()), "hmi-session=", 0);
}

Response SessionResource::withCookie(const Request& request, Response response,
                                     const std::string& cookie, long long seconds) {
    response.headers.emplace_back("Set-Cookie", cookie + "; Path=/; HttpOnly; SameSite=Strict" +
                                                    "; Max-Age=" + std::to_string(seconds) +
                                                    (request.underTls ? "; Secure" : ""));
    return response;
}

}  // namespace hmi
