#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <boost/beast/http/fields.hpp>
#include <boost/beast/http/message.hpp>

#include "server/http/Request.h"
#include "server/http/Response.h"

namespace hmi {

/// Why a request is not served, though it could be read: what leaves room for two readings of
/// where it ends, or whom it is for, would be read in another way by a proxy in front of us.
std::optional<Response> faultOf(const boost::beast::http::request_header<>& head);

/// All but its target and its body.
Request requestOf(const boost::beast::http::request_header<>& head);
/// What the proxies on the way have noted in a field of this name, the nearest last.
std::string forwardedOf(const boost::beast::http::request_header<>& head, std::string_view name);

}  // namespace hmi
