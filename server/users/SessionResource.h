#pragma once

#include "server/http/Router.h"
#include "server/users/AccessControl.h"

namespace hmi {

/// /api/session: signing in and out with a cookie.
class SessionResource {
public:
    explicit SessionResource(AccessControl& access) : access(access) {}

    void addRoutes(Router& router);

private:
    Response who(const Request& request) const;
    Response open(const Request& request);
    Response close(const Request& request);
    /// One who has come by TLS never sends the cookie in another way.
    static Response withCookie(const Request& request, Response response,
                               const std::string& cookie, long long seconds);

    AccessControl& access;
};

}  // namespace hmi
