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
constexpr std::size_t firstRead = 1 << 10;  ///< kept ready for each idle client
/// Bodies and answers up to here are not counted against what all clients may hold together.
constexpr std::size_t smallSize = 16 << 10;
constexpr auto handshakeTimeout = std::chrono::seconds(10);
constexpr auto requestTimeout = std::chrono::seconds(30);   ///< from its first byte to its last
constexpr auto progressTimeout = std::chrono::seconds(30);  ///< of a client that takes nothing
constexpr auto idleTimeout = std::chrono::seconds(75);
constexpr auto lingerTimeout = std::chrono::seconds(2);

/// Why there is nothing more to read; no error where there is something.
boost::beast::error_code peek(asio::ip::tcp::socket& socket) {
    boost::beast::error_code error;
    socket.non_blocking(true, error);
    std::byte next{};
    socket.receive(asio::buffer(&next, 1), asio::socket_base::message_peek, error);
    return error;
}

std::size_t sizeOf(const Response& reply) {
    const std::size_t size = reply.parts ? reply.held : reply.body.size();
    return size > smallSize ? size : 0;
}

Response busy(const char* why) {
    Response reply = Response::error(503, why);
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
    if (isIn(Phase::idle) || isIn(Phase::receiving))
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
    parser.emplace();
    parser->header_limit(headerLimit);
    parser->body_limit(boost::none);  // known when the target is
    manner = {};
    if (buffer.size() > 0)
        return readHeader();
    enter(Phase::idle);
    buffer.shrink_to_fit();
    expireAfter(idleTimeout);
    stream.async_read_some(buffer.prepare(firstRead),
                           [self = shared_from_this()](Error error, std::size_t size) {
                               if (error)
                                   return;
                               self->buffer.commit(size);
                               self->readHeader();
                           });
}

void HttpSession::readHeader() {
    enter(Phase::receiving);
    expireAfter(requestTimeout);
    http::async_read_header(
        stream, buffer, *parser,
        [self = shared_from_this()](Error error, std::size_t) { self->onHeader(error); });
}

/// All that the request says is taken now: what stands behind its body says nothing.
void HttpSession::onHeader(Error error) {
    if (error)
        return onReadFailed(error);
    const auto& head = parser->get();
    manner = {head.version(), head.method() == http::verb::head, head.keep_alive()};
    if (auto fault = faultOf(head))
        return refuse(std::move(*fault));
    const TrustedProxies& proxies = context->proxies;
    client = proxies.clientOf(peer, forwardedOf(head, "X-Forwarded-For"));
    request = requestOf(head);
    request.peer = client.to_string();
    request.underTls = proxies.isUnderTls(peer, forwardedOf(head, "X-Forwarded-Proto"))
                           .value_or(stream.isUnderTls());
    target = std::string(head.target());
    upgrades = beast::websocket::is_upgrade(head) && Dispatcher::isStream(target);
    if (parser->is_done())
        return serve();
    const std::uint64_t limit = context->dispatcher.bodyLimit(target);
    parser->body_limit(limit);
    if (parser->content_length().value_or(0) > limit)
        return onReadFailed(http::error::body_limit);
    if (beast::iequals(head[http::field::expect], "100-continue"))
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
    http::async_read_some(
        stream, buffer, *parser,
        [self = shared_from_this()](Error error, std::size_t) { self->onBody(error); });
}

/// What has come of it counts, and not what was announced.
void HttpSession::onBody(Error error) {
    if (error)
        return onReadFailed(error);
    const std::size_t size = parser->get().body().size();
    if (size > smallSize) {
        if (!hold(size))
            return refuse(busy("too much is on its way from and to other clients"));
        buffer.reserve(bufferLimit);
    }
    if (!parser->is_done())
        return readBody();
    request.body = std::move(parser->get().body());
    serve();
}

void HttpSession::onReadFailed(Error error) {
    manner.headOnly = parser->get().method() == http::verb::head;
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

void HttpSession::serve() {
    enter(Phase::serving);
    ++served;
    stream.next_layer().expires_never();
    if (upgrades)
        return follow();
    request.client = watchClient();
    context->access.admit(
        std::move(request), target,
        [self = sharedWithWorkers()](Request admitted, std::optional<Response> refusal) {
            self->context->dispatcher.dispatch(
                std::move(admitted), std::move(refusal), [self](Response response) {
                    asio::post(self->executor, [self, response = std::move(response)]() mutable {
                        self->send(std::move(response));
                    });
                });
        });
}

/// Until the answer is sent. A client that sends its next request already is not watched for the
/// end of what it sends.
std::shared_ptr<const Presence> HttpSession::watchClient() {
    auto presence = std::make_shared<Presence>();
    auto& socket = stream.next_layer().socket();
    socket.async_wait(asio::ip::tcp::socket::wait_read,
                      [self = shared_from_this(), presence](Error error) {
                          if (!error)
                              error = peek(self->stream.next_layer().socket());
                          if (error == asio::error::eof)
                              presence->hasEndedItsSide();
                          else if (error && error != asio::error::would_block &&
                                   error != asio::error::operation_aborted)
                              presence->hasGone();  // where no wait_error tells of it
                      });
    socket.async_wait(asio::ip::tcp::socket::wait_error,
                      [self = shared_from_this(), presence](Error error) {
                          if (!error)
                              presence->hasGone();
                      });
    return presence;
}

std::shared_ptr<HttpSession> HttpSession::sharedWithWorkers() {
    return {this, [session = shared_from_this(), number = served](HttpSession*) mutable {
                const auto executor = session->executor;
                asio::post(executor, [last = std::move(session), number] {
                    if (last->isIn(Phase::serving) && last->served == number)
                        last->abort();
                });
            }};
}

void HttpSession::follow() {
    context->access.admit(
        std::move(request), target,
        [self = sharedWithWorkers()](Request admitted, std::optional<Response> refusal) {
            asio::post(self->executor, [self, admitted = std::move(admitted),
                                        refusal = std::move(refusal)]() mutable {
                self->accept(admitted, std::move(refusal));
            });
        });
}

void HttpSession::accept(const Request& admitted, std::optional<Response> refusal) {
    std::optional<StreamWish> wish = StreamWish::parse(target);
    if (!refusal)
        refusal = whyNotToFollow(admitted.user, wish);
    if (refusal)
        return refuse(std::move(*refusal));
    handedOver = true;
    std::make_shared<StreamSession>(std::move(stream), client, context)
        ->accept(parser->release(), *wish, context->access.admissionOf(admitted));
}

/// The log is no type of change for those who may not read it.
std::optional<Response> HttpSession::whyNotToFollow(const std::string& user,
                                                    std::optional<StreamWish>& wish) const {
    if (!wish)
        return Response::error(400, "types are names of changes, brief is 0 or 1");
    if (!context->dispatcher.isOpen())
        return Dispatcher::notOpen();
    if (!all->mayFollow(client))
        return busy("too many follow the changes");
    if (context->access.roleOf(user) >= Role::engineer || !wish->contains(ChangeType::log))
        return std::nullopt;
    if (wish->areNamed())
        return Response::error(403, "the log takes the role engineer");
    wish->remove(ChangeType::log);
    return std::nullopt;
}

/// What follows on the connection might not be read as it was meant.
void HttpSession::refuse(Response reply) {
    manner = {11, manner.headOnly, false};
    send(std::move(reply));
}

void HttpSession::send(Response reply) {
    Error ignored;
    stream.next_layer().socket().cancel(ignored);  // the client is not watched any more
    enter(Phase::sending);
    hold(0);
    if (!hold(sizeOf(reply)))
        reply = busy("too many answers are on their way to other clients");
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
        asio::post(self->executor,
                   [self, part = std::move(part)]() mutable { self->supply(std::move(part)); });
    };
    const auto make = [parts = answer->parts(), give] {
        try {
            give((*parts)());
        } catch (const std::exception& exception) {
            log(LogLevel::error, std::string("an answer failed halfway: ") + exception.what());
            give(std::nullopt);
        }
    };
    context->dispatcher.work(answer->partsLane(), make, [give] { give(std::nullopt); });
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
