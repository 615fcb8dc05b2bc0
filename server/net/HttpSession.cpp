#include "server/net/HttpSession.h"

#include <chrono>

#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/beast/websocket/rfc6455.hpp>

#include "server/Log.h"
#include "server/net/RequestHead.h"
#include "server/net/StreamSession.h"

namespace hmi {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;

namespace {

constexpr std::uint32_t headerLimit = 16 << 10;
/// What is read but not yet parsed; also the longest extension or trailer of a chunk.
constexpr std::size_t bufferLimit = 64 << 10;
/// Bodies and answers up to here are not counted against what all clients may hold together.
constexpr std::size_t smallSize = 16 << 10;
constexpr auto handshakeTimeout = std::chrono::seconds(10);
constexpr auto requestTimeout = std::chrono::seconds(30);
constexpr auto progressTimeout = std::chrono::seconds(30);  ///< of a client that takes nothing
constexpr auto idleTimeout = std::chrono::seconds(75);
constexpr auto lingerTimeout = std::chrono::seconds(2);

std::size_t sizeOf(const Response& reply) {
    const std::size_t size = reply.parts ? reply.held : reply.body.size();
    return size > smallSize ? size : 0;
}

Response busy() {
    Response reply = Response::error(503, "too many answers are on their way to other clients");
    reply.headers.emplace_back("Retry-After", "1");
    return reply;
}

}  // namespace

HttpSession::HttpSession(ClientStream client, const asio::ip::address& from,
                         std::shared_ptr<SessionContext> shared)
    : Connection(SessionContext::connectionsOf(shared), from),
      context(std::move(shared)),
      stream(std::move(client)),
      executor(stream.get_executor()),
      buffer(bufferLimit) {}

void HttpSession::close() {
    closing = true;
    if (idle)
        abort();
}

void HttpSession::abort() {
    if (handedOver)
        return;
    stream.next_layer().close();
}

void HttpSession::start() {
    expireAfter(handshakeTimeout);
    stream.handshake([self = shared_from_this()](Error error) {
        if (!error)
            self->readRequest();
    });
}

void HttpSession::readRequest() {
    enter(Phase::idle);
    idle = true;
    parser.emplace();
    parser->header_limit(headerLimit);
    parser->body_limit(boost::none);  // known when the target is
    expireAfter(buffer.size() == 0 ? idleTimeout : requestTimeout);
    http::async_read_header(
        stream, buffer, *parser,
        [self = shared_from_this()](Error error, std::size_t) { self->onHeader(error); });
}

void HttpSession::onHeader(Error error) {
    if (error)
        return onReadFailed(error);
    enter(Phase::busy);
    idle = false;
    if (auto fault = faultOf(parser->get()))
        return refuse(std::move(*fault));
    const std::uint64_t limit = Dispatcher::bodyLimit(parser->get().target());
    parser->body_limit(limit);
    const std::uint64_t length = parser->content_length().value_or(parser->chunked() ? limit : 0);
    if (length > limit)
        return onReadFailed(http::error::body_limit);
    if (length > smallSize && !hold(static_cast<std::size_t>(length)))
        return refuse(busy());
    expireAfter(requestTimeout);
    if (beast::iequals(parser->get()[http::field::expect], "100-continue"))
        return sendContinue();
    readBody();
}

void HttpSession::sendContinue() {
    static const std::string line = "HTTP/1.1 100 Continue\r\n\r\n";
    asio::async_write(stream, asio::buffer(line),
                      [self = shared_from_this()](Error error, std::size_t) {
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
        return refuse(Response::error(431, "the header is too long"));
    if (error == http::error::buffer_overflow)
        return refuse(Response::error(431, "an extension or a trailer is too long"));
    if (error == http::error::body_limit)
        return refuse(Response::error(413, "the body is too long"));
    if (error == http::error::end_of_stream ||
        error.category() != make_error_code(http::error::end_of_stream).category())
        return;  // the client has gone, or was too slow
    refuse(Response::error(400, "not an HTTP request"));
}

Request HttpSession::request() {
    Request taken = takeRequest(parser->get());
    taken.peer = peer.to_string();
    return taken;
}

void HttpSession::serve() {
    stream.next_layer().expires_never();
    const auto& head = parser->get();
    const Manner manner{head.version(), head.method() == http::verb::head, head.keep_alive()};
    const std::string target(head.target());
    Request taken = request();
    taken.abandoned = watchClient();
    context->access.admit(
        std::move(taken), target,
        [self = sharedWithWorkers(), manner](Request admitted, std::optional<Response> refusal) {
            self->dispatch(std::move(admitted), std::move(refusal), manner);
        });
}

/// Any thread.
void HttpSession::dispatch(Request admitted, std::optional<Response> refusal,
                           const Manner& manner) {
    const auto audited = Audit::entryOf(admitted);
    context->dispatcher.dispatch(
        std::move(admitted), std::move(refusal),
        [self = sharedWithWorkers(), manner, audited](Response response) {
            if (audited)
                self->context->audit.record(*audited, response);
            asio::post(self->executor,
                       [self, manner, response = std::move(response)]() mutable {
                           self->send(std::move(response), manner);
                       });
        });
}

/// Becomes true when the client ends the connection before it has its answer. One that sends its
/// next request already is not watched any more.
std::shared_ptr<const std::atomic<bool>> HttpSession::watchClient() {
    auto gone = std::make_shared<std::atomic<bool>>(false);
    stream.next_layer().socket().async_wait(
        asio::ip::tcp::socket::wait_read, [self = shared_from_this(), gone](Error error) {
            if (!error)
                *gone = self->stream.next_layer().socket().available(error) == 0;
        });
    return gone;
}

std::shared_ptr<HttpSession> HttpSession::sharedWithWorkers() {
    return {this, [session = shared_from_this()](HttpSession*) mutable {
                const auto executor = session->executor;
                asio::post(executor, [last = std::move(session)] {});
            }};
}

void HttpSession::follow() {
    stream.next_layer().expires_never();
    const std::string target(parser->get().target());
    context->access.admit(
        request(), target,
        [self = sharedWithWorkers()](Request admitted, std::optional<Response> refusal) {
            asio::post(self->executor, [self, admitted = std::move(admitted),
                                        refusal = std::move(refusal)]() mutable {
                self->accept(admitted, std::move(refusal));
            });
        });
}

void HttpSession::accept(const Request& admitted, std::optional<Response> refusal) {
    if (refusal)
        return refuse(std::move(*refusal));
    const auto types = StreamTypes::parse(std::string(parser->get().target()));
    if (!types)
        return refuse(Response::error(400, "types are names of changes"));
    handedOver = true;
    std::make_shared<StreamSession>(std::move(stream), peer, context)
        ->accept(parser->release(), *types, context->access.admissionOf(admitted));
}

/// What follows on the connection might not be read as it was meant.
void HttpSession::refuse(Response reply) {
    send(std::move(reply), {11, false, false});
}

void HttpSession::send(Response reply, Manner manner) {
    Error ignored;
    stream.next_layer().socket().cancel(ignored);  // the client is not watched any more
    enter(Phase::sending);
    hold(0);
    if (!hold(sizeOf(reply)))
        reply = busy();
    manner.keepAlive = manner.keepAlive && !closing;
    answer.emplace(std::move(reply), manner);
    write();
}

void HttpSession::write() {
    expireAfter(progressTimeout);
    http::async_write_some(
        stream, answer->serializer,
        [self = shared_from_this()](Error error, std::size_t) { self->onWritten(error); });
}

void HttpSession::onWritten(Error error) {
    if (error == http::error::need_buffer)
        return fetchPart();
    if (error)
        return answer.reset();
    enter(Phase::sending);
    if (answer->isDone())
        return onSent();
    write();
}

void HttpSession::fetchPart() {
    const auto self = sharedWithWorkers();
    const auto give = [self](std::optional<std::string> part) {
        asio::post(self->executor, [self, part = std::move(part)]() mutable {
            self->supply(std::move(part));
        });
    };
    const auto make = [parts = answer->parts(), give] {
        try {
            give((*parts)());
        } catch (const std::exception& exception) {
            log(LogLevel::error, std::string("an answer failed halfway: ") + exception.what());
            give(std::nullopt);
        }
    };
    context->dispatcher.work(make, [give] { give(std::nullopt); });
}

void HttpSession::supply(std::optional<std::string> part) {
    if (!part)
        return abort();  // the client learns that the answer is not whole
    answer->supply(std::move(*part));
    write();
}

void HttpSession::onSent() {
    const bool keepsAlive = answer->keepsAlive() && !closing;
    answer.reset();
    hold(0);
    if (keepsAlive)
        return readRequest();
    expireAfter(lingerTimeout);
    stream.finish([self = shared_from_this()](Error error) {
        if (!error)
            self->linger();
    });
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
