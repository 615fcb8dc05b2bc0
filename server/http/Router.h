#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "server/http/Request.h"
#include "server/http/Response.h"

namespace hmi {

/// Which threads serve a request.
enum class Lane : std::uint8_t {
    local,          ///< never waits for the extension
    extension,      ///< calls the extension, as long as that takes
    configuration,  ///< likewise, one at a time
};

using Handler = std::function<Response(const Request&)>;

struct Route {
    Method method;
    std::vector<std::string> path;  ///< "*" stands for any one name
    Lane lane;
    Handler handler;
};

/// Finds the handler of a request. Filled before the first request, then read by any thread.
class Router {
public:
    /// `path`: for example "/api/events/*".
    void add(Method method, std::string_view path, Lane lane, Handler handler);
    /// Throws RequestError 404, MethodError when there are only other methods.
    const Route& find(const Request& request) const;

private:
    std::vector<Route> routes;
};

/// 405, with the methods that a path has.
class MethodError : public RequestError {
public:
    explicit MethodError(std::string allow)
        : RequestError(405, "this address has no such method"), allow(std::move(allow)) {}
    const std::string allow;
};

}  // namespace hmi
