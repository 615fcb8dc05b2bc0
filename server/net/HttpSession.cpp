#include "server/net/HttpSession.h"

#include <chrono>

#include <boost/asio/post.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/websocket/rfc6455.hpp>

#include "server/net/StreamSession.h"

namespace hmi {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;

namespace {

constexpr std::uint32_t headerLimit = 16 << 10;
constexpr auto requestTimeout = std::chrono::seconds(30);
constexpr auto idleTimeout = std::chrono::seconds(75);
constexpr auto lingerTimeout = std::chrono::seconds(2);

constexpr const char* contentPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

Method methodOf(http::verb verb) {
    switch (verb) {
        case http::verb::get:
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

}  // namespace

HttpSession::HttpSession(asio::ip::tcp::socket socket, std::shared_ptr<SessionContext> shared)
    : Connection(SessionContext::connectionsOf(shared)),
      context(std::move(shared)),
      stream(std::move(socket)) {}

void HttpSession::close() {
    closing = true;
    if (idle)
        stream.close();
}

void HttpSession::readRequest() {
    idle = true;
    parser.emplace();
    parser->header_limit(headerLimit);
    parser->body_limit(boost::none);  // known when the target is
    stream.expires_after(buffer.size() == 0 ? idleTimeout : requestTimeout);
    http::async_read_header(
        stream, buffer, *parser,
        [self = shared_from_this()](Error error, std::size_t) { self->onHeader(error); });
}

void HttpSession::onHeader(Error error) {
    if (error)
        return onReadFailed(error);
    idle = false;
    const std::uint64_t limit = Dispatcher::bodyLimit(parser->get().target());
    parser->body_limit(limit);
    if (parser->content_length().value_or(0) > limit)
        return onReadFailed(http::error::body_limit);
    stream.expires_after(requestTimeout);
    if (beast::iequals(parser->get()[http::field::expect], "100-continue"))
        return sendContinue();
    readBody();
}

void HttpSession::sendContinue() {
    response = {http::status::continue_, parser->get().version()};
    http::async_write(stream, response, [self = shared_from_this()](Error error, std::size_t) {
        if (!error)
            self->readBody();
    });
}

void HttpSession::readBody() {
    http::async_read(
        stream, buffer, *parser,
        [self = shared_from_this()](Error error, std::size_t) { self->onBody(error); });
}

void HttpSession::onBody(Error error) {
    if (error)
        return onReadFailed(error);
    if (beast::websocket::is_upgrade(parser->get()) && Dispatcher::isStream(parser->get().target()))
        return follow();
    serve();
}

void HttpSession::onReadFailed(Error error) {
    if (error == http::error::header_limit)
        return send(Response::error(431, "the header is too long"), false);
    if (error == http::error::body_limit)
        return send(Response::error(413, "the body is too long"), false);
    if (error == http::error::end_of_stream ||
        error.category() != make_error_code(http::error::end_of_stream).category())
        return;  // the client has gone, or was too slow
    send(Response::error(400, "not an HTTP request"), false);
}

Request HttpSession::takeRequest() {
    auto& message = parser->get();
    Request request;
    request.method = methodOf(message.method());
    request.host = fieldOf(message, http::field::host);
    request.origin = fieldOf(message, http::field::origin);
    request.body = std::move(message.body());
    Error error;
    request.peer = stream.socket().remote_endpoint(error).address().to_string();
    return request;
}

void HttpSession::serve() {
    stream.expires_never();
    const auto reply = [self = sharedWithWorkers(),
                        keepAlive = parser->get().keep_alive()](Response answer) {
        asio::post(self->stream.get_executor(),
                   [self, keepAlive, answer = std::move(answer)]() mutable {
                       self->send(std::move(answer), keepAlive);
                   });
    };
    Request request = takeRequest();
    request.abandoned = watchClient();
    context->dispatcher.dispatch(std::move(request), std::string(parser->get().target()), reply);
}

/// Becomes true when the client ends the connection before it has its answer. One that sends its
/// next request already is not watched any more.
std::shared_ptr<const std::atomic<bool>> HttpSession::watchClient() {
    auto gone = std::make_shared<std::atomic<bool>>(false);
    stream.socket().async_wait(asio::ip::tcp::socket::wait_read,
                               [self = shared_from_this(), gone](Error error) {
                                   if (!error)
                                       *gone = self->stream.socket().available(error) == 0;
                               });
    return gone;
}

std::shared_ptr<HttpSession> HttpSession::sharedWithWorkers() {
    return {this, [session = shared_from_this()](HttpSession*) mutable {
                const auto executor = session->stream.get_executor();
                asio::post(executor, [last = std::move(session)] {});
            }};
}

void HttpSession::follow() {
    if (!context->dispatcher.allowsStream(takeRequest()))
        return send(Response::error(403, "not for pages of another origin"), false);
    const auto types = StreamTypes::parse(std::string(parser->get().target()));
    if (!types)
        return send(Response::error(400, "types are names of changes"), false);
    stream.expires_never();
    std::make_shared<StreamSession>(std::move(stream), context)->accept(parser->release(), *types);
}

void HttpSession::send(Response reply, bool keepAlive) {
    Error ignored;
    stream.socket().cancel(ignored);  // the client is not watched any more
    const bool isPage = reply.contentType.starts_with("text/html");
    response = {static_cast<http::status>(reply.status), 11, std::move(reply.body)};
    response.set(http::field::content_type, reply.contentType);
    response.set(http::field::cache_control, "no-store");
    response.set("X-Content-Type-Options", "nosniff");
    if (isPage)
        response.set("Content-Security-Policy", contentPolicy);
    if (!reply.allow.empty())
        response.set(http::field::allow, reply.allow);
    if (reply.status == 426)
        response.set(http::field::upgrade, "websocket");
    keepAlive = keepAlive && !closing;
    response.keep_alive(keepAlive);
    response.prepare_payload();
    stream.expires_after(requestTimeout);
    http::async_write(stream, response,
                      [self = shared_from_this(), keepAlive](Error error, std::size_t) {
                          self->onSent(error, keepAlive);
                      });
}

void HttpSession::onSent(Error error, bool keepAlive) {
    response = {};
    if (error)
        return;
    if (keepAlive && !closing)
        return readRequest();
    stream.socket().shutdown(asio::ip::tcp::socket::shutdown_send, error);
    stream.expires_after(lingerTimeout);
    linger();
}

/// Takes what the client still sends: a connection that is closed with unread bytes is reset, and
/// the client might lose the response.
void HttpSession::linger() {
    buffer.clear();
    stream.async_read_some(buffer.prepare(headerLimit),
                           [self = shared_from_this()](Error error, std::size_t) {
                               if (!error)
                                   self->linger();
                           });
}

}  // namespace hmi
