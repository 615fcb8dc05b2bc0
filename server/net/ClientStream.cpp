#include "server/net/ClientStream.h"

#include <boost/beast/websocket/teardown.hpp>

#ifdef HMI_WITH_TLS
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#endif

namespace hmi {

#ifdef HMI_WITH_TLS

class ClientStream::Tls : public boost::asio::ssl::stream<next_layer_type&> {
public:
    using stream::stream;
};

ClientStream::ClientStream(boost::asio::ip::tcp::socket socket, TlsContextPtr with)
    : tcp(std::make_unique<next_layer_type>(std::move(socket))), context(std::move(with)) {
    if (context)
        tls = std::make_unique<Tls>(*tcp, *context);
}

void ClientStream::read(const Room& room, TransferHandler then) {
    if (tls)
        return tls->async_read_some(room, std::move(then));
    tcp->async_read_some(room, std::move(then));
}

void ClientStream::write(const Content& content, TransferHandler then) {
    if (tls)
        return tls->async_write_some(content, std::move(then));
    tcp->async_write_some(content, std::move(then));
}

void ClientStream::handshake(Handler then) {
    if (tls)
        return tls->async_handshake(boost::asio::ssl::stream_base::server, std::move(then));
    then(Error());
}

void ClientStream::finish(Handler then) {
    if (tls)
        return tls->async_shutdown(std::move(then));
    Error error;
    tcp->socket().shutdown(boost::asio::ip::tcp::socket::shutdown_send, error);
    then(error);
}

#else

class ClientStream::Tls {};

ClientStream::ClientStream(boost::asio::ip::tcp::socket socket, TlsContextPtr)
    : tcp(std::make_unique<next_layer_type>(std::move(socket))) {}

void ClientStream::read(const Room& room, TransferHandler then) {
    tcp->async_read_some(room, std::move(then));
}

void ClientStream::write(const Content& content, TransferHandler then) {
    tcp->async_write_some(content, std::move(then));
}

void ClientStream::handshake(Handler then) {
    then(Error());
}

void ClientStream::finish(Handler then) {
    Error error;
    tcp->socket().shutdown(boost::asio::ip::tcp::socket::shutdown_send, error);
    then(error);
}

#endif

ClientStream::ClientStream(ClientStream&&) noexcept = default;
ClientStream::~ClientStream() = default;

void ClientStream::teardown(boost::beast::role_type role, Handler then) {
    boost::beast::websocket::async_teardown(role, tcp->socket(), std::move(then));
}

}  // namespace hmi
