#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "server/net/ClientStream.h"

namespace hmi {

/// A connection on which two write, a WebSocket its control frames and somebody else its messages:
/// what either writes at a time goes out as a whole, one behind the other. On the I/O thread only.
class OrderedStream {
public:
    using executor_type = ClientStream::executor_type;
    using next_layer_type = ClientStream;
    using Error = ClientStream::Error;
    using Buffers = std::vector<boost::asio::const_buffer>;

    explicit OrderedStream(ClientStream stream) : stream(std::move(stream)) {}
    OrderedStream(OrderedStream&&) = delete;

    executor_type get_executor() noexcept { return stream.get_executor(); }
    next_layer_type& next_layer() noexcept { return stream; }
    const next_layer_type& next_layer() const noexcept { return stream; }

    template <class Room, class Then>
    void async_read_some(const Room& room, Then&& then) {
        stream.async_read_some(room, std::forward<Then>(then));
    }
    /// Writes all of them.
    template <class Content, class Then>
    void async_write_some(const Content& content, Then&& then) {
        const Buffers buffers(boost::asio::buffer_sequence_begin(content),
                              boost::asio::buffer_sequence_end(content));
        auto owned = std::make_shared<std::decay_t<Then>>(std::forward<Then>(then));
        write(buffers, [owned](Error error, std::size_t size) {
            std::move (*owned)(error, size);
        });
    }
    /// Writes all of these, which last until then.
    void write(Buffers buffers, ClientStream::TransferHandler then);

    template <class Then>
    friend void async_teardown(boost::beast::role_type role, OrderedStream& ordered, Then&& then) {
        async_teardown(role, ordered.stream, std::forward<Then>(then));
    }

private:
    struct Write {
        Buffers buffers;
        std::size_t next = 0;     ///< of the buffers, the first that is not written
        std::size_t written = 0;  ///< bytes
        ClientStream::TransferHandler then;
    };

    struct Running;
    void begin();
    void onWritten(Error error, std::size_t size);
    static bool take(Write& write, std::size_t size);

    ClientStream stream;
    std::deque<Write> writes;  ///< the first is under way
};

}  // namespace hmi
