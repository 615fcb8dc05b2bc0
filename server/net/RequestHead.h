#pragma once

#include <optional>

#include <boost/beast/http/fields.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>

#include "server/http/Request.h"
#include "server/http/Response.h"

namespace hmi {

/// Why a request is not served, though it could be read: what leaves room for two readings of
/// where it ends, or whom it is for, would be read in another way by a proxy in front of us.
std::optional<Response> faultOf(const boost::beast::http::request_header<>& head);

/// Takes the body out of the message.
Request takeRequest(
    boost::beast::http::request<boost::beast::http::string_body>& message);

}  // namespace hmi
