#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "server/http/Request.h"
#include "server/http/Response.h"
#include "server/lanes/Lane.h"

namespace hmi {

using Handler = std::function<Response(const Request&)>;
/// Answers with what `make` makes or throws. Once, from any thread.
using LateReply = std::function<void(const std::function<Response()>& make)>;
/// Answers when it can and waits for nothing; or throws and answers nothing. The request lives as
/// long as the reply.
using LateHandler = std::function<void(const Request&, const LateReply&)>;
/// Tells where a request is served; called on the local lane. Throws as a handler does.
using Placement = std::function<Place(const Request&)>;

struct Route {
    Method method;
    std::vector<std::string> path;  ///< "*" stands for any one name
    Placement placement;            ///< none: on the local lane
    Handler handler;
    LateHandler lateHandler = {};  ///< instead of `handler`
    bool early = false;            ///< served before the extension has started, too
};

/// Finds the handler of a request. Filled before the first request, then read by any thread.
class Router {
public:
    /// `path`: for example "/api/events/*".
    void add(Method method, std::string_view path, Handler handler) {
        add(method, path, {}, std::move(handler));
    }
    void addEarly(Method method, std::string_view path, Handler handler) {
        add(method, path, {}, std::move(handler));
        routes.back().early = true;
    }
    /// For a request that may have to wait.
    void add(Method method, std::string_view path, Placement placement, Handler handler);
    /// For a request that others answer, on the local lane.
    void addLate(Method method, std::string_view path, LateHandler handler);
    /// The largest body that a path takes, in bytes, where it is another than usual.
    void limitBody(std::string_view path, std::uint64_t bytes);
    std::uint64_t bodyLimit(const std::vector<std::string>& path) const noexcept;
    /// Throws RequestError 404, MethodError when there are only other methods.
    const Route& find(const Request& request) const;

private:
    struct BodyLimit {
        std::vector<std::string> path;
        std::uint64_t bytes;
    };
    std::vector<Route> routes;
    std::vector<BodyLimit> bodyLimits;
};

/// 405, with the methods that a path has.
class MethodError : public RequestError {
public:
    explicit MethodError(std::string allow)
        : RequestError(405, "this address has no such method"), allow(std::move(allow)) {}
    const std::string allow;
};

}  // namespace hmi
