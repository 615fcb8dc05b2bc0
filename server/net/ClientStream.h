#pragma once

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/role.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/container/static_vector.hpp>

namespace boost::asio::ssl {
class context;
}

namespace hmi {

#ifdef HMI_WITH_TLS
using TlsContextPtr = std::shared_ptr<boost::asio::ssl::context>;
#else
using TlsContextPtr = std::shared_ptr<void>;
#endif

/// A client's connection, plain or under TLS, as one type for all that reads and writes. Whatever
/// asks, below here there is one type of buffers and one of handlers: what Beast and OpenSSL make
/// of them is compiled once.
class ClientStream {
public:
    using executor_type = boost::beast::tcp_stream::executor_type;
    using next_layer_type = boost::beast::tcp_stream;
    using Error = boost::system::error_code;
    using TransferHandler = std::function<void(Error, std::size_t)>;
    using Handler = std::function<void(Error)>;

    /// `context`: null for a plain connection.
    ClientStream(boost::asio::ip::tcp::socket socket, TlsContextPtr context);
    ClientStream(ClientStream&&) noexcept;
    ~ClientStream();

    bool isUnderTls() const noexcept { return context != nullptr; }
    executor_type get_executor() noexcept { return tcp->get_executor(); }
    next_layer_type& next_layer() noexcept { return *tcp; }
    const next_layer_type& next_layer() const noexcept { return *tcp; }

    template <class Buffers, class Then>
    void async_read_some(const Buffers& buffers, Then&& then) {
        read(firstOf<Room>(buffers), erased<TransferHandler>(std::forward<Then>(then)));
    }

    template <class Buffers, class Then>
    void async_write_some(const Buffers& buffers, Then&& then) {
        write(firstOf<Content>(buffers), erased<TransferHandler>(std::forward<Then>(then)));
    }

    /// Calls back at once for a plain connection.
    void handshake(Handler then);
    /// Says that nothing more will be sent; calls back when that is said.
    void finish(Handler then);

    template <class Then>
    friend void async_teardown(boost::beast::role_type role, ClientStream& stream, Then&& then) {
        stream.teardown(role, erased<Handler>(std::forward<Then>(then)));
    }

private:
    static constexpr std::size_t maxBuffers = 64;
    using Room = boost::container::static_vector<boost::asio::mutable_buffer, maxBuffers>;
    using Content = boost::container::static_vector<boost::asio::const_buffer, maxBuffers>;

    /// Those that hold something, as far as they fit: some is read or written, not all.
    template <class Fixed, class Buffers>
    static Fixed firstOf(const Buffers& buffers) {
        Fixed fixed;
        auto next = boost::asio::buffer_sequence_begin(buffers);
        const auto end = boost::asio::buffer_sequence_end(buffers);
        for (; next != end && fixed.size() < maxBuffers; ++next) {
            const typename Fixed::value_type buffer(*next);
            if (buffer.size() > 0)
                fixed.push_back(buffer);
        }
        return fixed;
    }

    /// Operations are moved and never copied, which std::function asks for.
    template <class Function, class Then>
    static Function erased(Then&& then) {
        return [owned = std::make_shared<std::decay_t<Then>>(std::forward<Then>(then))](
                   auto... results) { std::move (*owned)(results...); };
    }

    void read(const Room& room, TransferHandler then);
    void write(const Content& content, TransferHandler then);
    /// The closing handshake of a WebSocket is over, the connection follows.
    void teardown(boost::beast::role_type role, Handler then);

    std::unique_ptr<next_layer_type> tcp;
    TlsContextPtr context;  ///< outlives the connection that was made with it
    class Tls;
    std::unique_ptr<Tls> tls;  ///< null for a plain connection
};

}  // namespace hmi
