#include "server/net/Answer.h"

namespace hmi {

namespace http = boost::beast::http;

namespace {

constexpr const char* contentPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

}  // namespace

Answer::Answer(Response given, const Manner& manner)
    : response(std::move(given)),
      source(response.parts ? std::make_shared<BodyParts>(std::move(response.parts)) : nullptr),
      message(static_cast<http::status>(response.status), manner.version),
      headOnly(manner.headOnly) {
    setHeaders(manner);
    const bool hasParts = source != nullptr;
    message.body().data = hasParts || response.body.empty() ? nullptr : response.body.data();
    message.body().size = response.body.size();
    message.body().more = hasParts;
    serializer.split(headOnly);
}

void Answer::setHeaders(const Manner& manner) {
    if (response.status != 304)
        message.set(http::field::content_type, response.contentType);
    message.set(http::field::cache_control, response.keepable ? "no-cache" : "no-store");
    message.set("X-Content-Type-Options", "nosniff");
    if (response.contentType.starts_with("text/html"))
        message.set("Content-Security-Policy", contentPolicy);
    for (const auto& header : response.headers)
        message.set(header.first, header.second);
    if (!source && response.status != 304)
        message.content_length(response.body.size());
    if (source && manner.version >= 11)
        message.chunked(true);
    // Without a length the end of the connection is the end of the body.
    message.keep_alive(manner.keepAlive && (!source || manner.version >= 11));
}

void Answer::supply(std::string part) {
    response.body = std::move(part);
    message.body().data = response.body.empty() ? nullptr : response.body.data();
    message.body().size = response.body.size();
    message.body().more = !response.body.empty();
}

bool Answer::isDone() {
    return headOnly ? serializer.is_header_done() : serializer.is_done();
}

}  // namespace hmi
