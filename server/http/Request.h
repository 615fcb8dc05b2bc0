#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "server/http/Presence.h"
#include "server/http/Target.h"

namespace hmi {

enum class Method : std::uint8_t { get, post, put, remove, other };

/// A request as the handlers see it, free of any network type. Headers that are missing are empty.
struct Request {
    Method method = Method::get;
    Target target;
    std::string host;
    std::string origin;
    std::string authorization;
    std::string cookie;
    std::string ifNoneMatch;
    bool acceptsGzip = false;
    bool fromPage = false;  ///< a browser says that a page's script asks
    std::string body;

    std::string peer;  ///< the client's address, without a port
    bool underTls = false;  ///< the client's connection is
    std::string user;  ///< who asks; empty when nobody is asked who they are
    /// Fingerprint of the password by which the user was admitted; sessions end with it.
    std::string proof;
    /// Whether somebody waits for the answer; null when that is never known.
    std::shared_ptr<const Presence> client;
};

}  // namespace hmi
