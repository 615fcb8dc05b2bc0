#include "server/net/RequestHead.h"

#include <iterator>

#include <boost/beast/core/string.hpp>
#include <boost/beast/http/rfc7230.hpp>

namespace hmi {

namespace beast = boost::beast;
namespace http = beast::http;

namespace {

Method methodOf(http::verb verb) {
    switch (verb) {
        case http::verb::get:
        case http::verb::head:
            return Method::get;
        case http::verb::post:
            return Method::post;
        case http::verb::put:
            return Method::put;
        case http::verb::delete_:
            return Method::remove;
        default:
            return Method::other;
    }
}

std::string fieldOf(const http::fields& fields, http::field name) {
    const auto value = fields[name];
    return std::string(value.data(), value.size());
}

std::size_t countOf(const http::fields& fields, http::field name) {
    const auto range = fields.equal_range(name);
    return static_cast<std::size_t>(std::distance(range.first, range.second));
}

bool acceptsGzip(const http::fields& fields) {
    for (const auto& coding : http::ext_list(fields[http::field::accept_encoding])) {
        if (!beast::iequals(coding.first, "gzip"))
            continue;
        for (const auto& parameter : coding.second) {
            if (beast::iequals(parameter.first, "q") &&
                parameter.second.find_first_not_of("0.") == beast::string_view::npos)
                return false;
        }
        return true;
    }
    return false;
}

}  // namespace

std::optional<Response> faultOf(const http::request_header<>& head) {
    if (countOf(head, http::field::host) != 1)
        return Response::error(400, "a request names its host once");
    const std::size_t encodings = countOf(head, http::field::transfer_encoding);
    const std::size_t lengths = countOf(head, http::field::content_length);
    if (encodings + lengths > 1)
        return Response::error(400, "the length of the body is told in two ways");
    if (encodings == 0)
        return std::nullopt;
    if (head.version() < 11)
        return Response::error(400, "HTTP/1.0 has no transfer encoding");
    if (!beast::iequals(head[http::field::transfer_encoding], "chunked"))
        return Response::error(501, "no transfer encoding but chunked is known");
    return std::nullopt;
}

Request requestOf(const http::request_header<>& head) {
    Request request;
    request.method = methodOf(head.method());
    request.host = fieldOf(head, http::field::host);
    request.origin = fieldOf(head, http::field::origin);
    request.authorization = fieldOf(head, http::field::authorization);
    request.cookie = fieldOf(head, http::field::cookie);
    request.ifNoneMatch = fieldOf(head, http::field::if_none_match);
    request.acceptsGzip = acceptsGzip(head);
    request.fromPage = head.find("Sec-Fetch-Mode") != head.end();
    return request;
}

std::string forwardedOf(const http::request_header<>& head, std::string_view name) {
    std::string all;
    const auto range = head.equal_range(name);
    for (auto field = range.first; field != range.second; ++field)
        all.append(all.empty() ? "" : ",").append(field->value());
    return all;
}

}  // namespace hmi
