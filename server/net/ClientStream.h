#pragma once

#include <memory>
#include <utility>

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/websocket/stream.hpp>
#include <boost/beast/websocket/teardown.hpp>

#ifdef HMI_WITH_TLS
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream.hpp>
#endif

namespace hmi {

#ifdef HMI_WITH_TLS
using TlsContextPtr = std::shared_ptr<boost::asio::ssl::context>;
#else
using TlsContextPtr = std::shared_ptr<void>;
#endif

/// A client's connection, plain or under TLS, as one type for all that reads and writes.
class ClientStream {
public:
    using executor_type = boost::beast::tcp_stream::executor_type;
    using next_layer_type = boost::beast::tcp_stream;

    /// `context`: null for a plain connection.
    ClientStream(boost::asio::ip::tcp::socket socket, TlsContextPtr context)
        : tcp(std::make_unique<next_layer_type>(std::move(socket))), context(std::move(context)) {
#ifdef HMI_WITH_TLS
        if (this->context)
            tls = std::make_unique<Tls>(*tcp, *this->context);
#endif
    }

    executor_type get_executor() noexcept { return tcp->get_executor(); }
    next_layer_type& next_layer() noexcept { return *tcp; }
    const next_layer_type& next_layer() const noexcept { return *tcp; }

    template <class Buffers, class Handler>
    void async_read_some(const Buffers& buffers, Handler&& handler) {
#ifdef HMI_WITH_TLS
        if (tls) {
            tls->async_read_some(buffers, std::forward<Handler>(handler));
            return;
        }
#endif
        tcp->async_read_some(buffers, std::forward<Handler>(handler));
    }

    template <class Buffers, class Handler>
    void async_write_some(const Buffers& buffers, Handler&& handler) {
#ifdef HMI_WITH_TLS
        if (tls) {
            tls->async_write_some(buffers, std::forward<Handler>(handler));
            return;
        }
#endif
        tcp->async_write_some(buffers, std::forward<Handler>(handler));
    }

    /// Calls back at once for a plain connection.
    template <class Handler>
    void handshake(Handler handler) {
#ifdef HMI_WITH_TLS
        if (tls) {
            tls->async_handshake(boost::asio::ssl::stream_base::server, std::move(handler));
            return;
        }
#endif
        handler(boost::system::error_code());
    }

    /// Says that nothing more will be sent; calls back when that is said.
    template <class Handler>
    void finish(Handler handler) {
#ifdef HMI_WITH_TLS
        if (tls) {
            tls->async_shutdown(std::move(handler));
            return;
        }
#endif
        boost::system::error_code error;
        tcp->socket().shutdown(boost::asio::ip::tcp::socket::shutdown_send, error);
        handler(error);
    }

private:
    std::unique_ptr<next_layer_type> tcp;
    TlsContextPtr context;  ///< outlives the connection that was made with it
#ifdef HMI_WITH_TLS
    using Tls = boost::asio::ssl::stream<next_layer_type&>;
    std::unique_ptr<Tls> tls;
#endif
};

/// The end of a WebSocket: its closing handshake is over, the connection follows.
template <class Handler>
void async_teardown(boost::beast::role_type role, ClientStream& stream, Handler&& handler) {
    boost::beast::websocket::async_teardown(role, stream.next_layer().socket(),
                                            std::forward<Handler>(handler));
}

}  // namespace hmi
