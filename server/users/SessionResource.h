#pragma once

#include "server/http/Router.h"
#include "server/users/AccessControl.h"

namespace hmi {

/// /api/session: signing in and out with a cookie.
class SessionResource {
public:
    /// `secure`: the cookie goes over TLS only.
    SessionResource(AccessControl& access, bool secure) : access(access), secure(secure) {}

    void addRoutes(Router& router);

private:
    Response who(const Request& request) const;
    Response open(const Request& request);
    Response close(const Request& request);
    Response withCookie(Response response, const std::string& cookie, long long seconds) const;

    AccessControl& access;
    const bool secure;
};

}  // namespace hmi
