#include "server/net/StreamSession.h"

#include <chrono>
#include <utility>

namespace hmi {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace websocket = beast::websocket;

namespace {

constexpr std::size_t maxReceivedBytes = 4 << 10;

}  // namespace

StreamSession::StreamSession(ClientStream from, const asio::ip::address& client,
                             std::shared_ptr<SessionContext> shared)
    : Connection(SessionContext::connectionsOf(shared), client),
      context(std::move(shared)),
      stream(std::move(from)),
      admissionCheck(stream.get_executor()) {
    stream.set_option(websocket::stream_base::timeout::suggested(beast::role_type::server));
    stream.read_message_max(maxReceivedBytes);
    enter(Phase::following);
}

void StreamSession::accept(beast::http::request<beast::http::string_body> upgrade,
                           StreamWish wanted, AccessControl::Admission admitted) {
    admission = std::move(admitted);
    request = std::move(upgrade);
    wish = wanted;
    // Before the client learns that it is accepted: what it reads of the list from then on and
    // what it is told must leave no gap.
    next = context->hub.join(shared_from_this());
    stream.async_accept(
        request, [self = shared_from_this()](beast::error_code error) { self->onAccepted(error); });
}

void StreamSession::onAccepted(beast::error_code error) {
    if (error)
        return disconnect();
    if (ending)
        return;
    accepted = true;
    read();
    wake();
    if (context->access.hasUsers())
        watchAdmission();
}

void StreamSession::watchAdmission() {
    constexpr std::chrono::seconds interval{1};
    admissionCheck.expires_after(interval);
    admissionCheck.async_wait([weak = weak_from_this()](const beast::error_code& error) {
        const auto self = weak.lock();
        if (error || !self)
            return;
        if (self->context->access.holds(self->admission))
            self->watchAdmission();
        else
            self->end(websocket::close_code::policy_error);
    });
}

void StreamSession::read() {
    stream.async_read(received, [self = shared_from_this()](beast::error_code error, std::size_t) {
        if (error)
            return self->disconnect();
        self->received.clear();
        self->read();
    });
}

void StreamSession::wake() {
    if (!accepted || ending || !frames.isEmpty())
        return;
    while (!frames.isFull()) {
        StreamLine line = context->hub.lines().next(next, wish);
        if (!line)
            break;
        frames.add(++sequence, std::move(line));
    }
    if (!frames.isEmpty())
        write();
}

void StreamSession::write() {
    stream.next_layer().write(frames.buffers(), [self = shared_from_this()](beast::error_code error,
                                                                            std::size_t) {
        if (error)
            return self->disconnect();
        self->frames.clear();
        self->wake();
    });
}

void StreamSession::leave() {
    ending = true;
    context->hub.leave(this);
    admissionCheck.cancel();
}

void StreamSession::disconnect() {
    leave();
    beast::get_lowest_layer(stream).close();
}

void StreamSession::close() {
    if (!accepted)
        return disconnect();
    end(websocket::close_code::going_away);
}

void StreamSession::end(websocket::close_code why) {
    if (ending)
        return;
    leave();
    stream.async_close(why, [self = shared_from_this()](beast::error_code) {});
}

}  // namespace hmi
