#include "server/http/Conditional.h"

#include <array>
#include <cstdio>
#include <functional>
#include <memory>

#include "server/http/Compression.h"

namespace hmi {

namespace {

constexpr std::size_t worthPacking = 1024;

/// Weak, since the packed body and the plain one share it.
std::string tagOf(const std::string& body) {
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "W/\"%zx-%zx\"", body.size(),
                  std::hash<std::string>()(body));
    return text.data();
}

BodyParts packed(BodyParts parts) {
    return [parts = std::move(parts), stream = std::make_shared<GzipStream>(),
            ended = false]() mutable -> std::string {
        if (ended)
            return {};
        const std::string part = parts();
        ended = part.empty();
        return ended ? stream->finish() : stream->add(part);
    };
}

void pack(Response& response) {
    if (response.parts)
        response.parts = packed(std::move(response.parts));
    else
        response.body = gzip(response.body);
    response.headers.emplace_back("Content-Encoding", "gzip");
}

}  // namespace

void fit(const Request& request, Response& response) {
    if (response.status != 200)
        return;
    if (request.method == Method::get && !response.parts) {
        const std::string tag = tagOf(response.body);
        response.headers.emplace_back("ETag", tag);
        if (request.ifNoneMatch.find(tag) != std::string::npos) {
            response.status = 304;
            response.body.clear();
            return;
        }
    }
    if (!response.parts && response.body.size() < worthPacking)
        return;
    response.headers.emplace_back("Vary", "Accept-Encoding");
    if (request.acceptsGzip)
        pack(response);
}

}  // namespace hmi
