#include "server/net/OrderedStream.h"

#include <span>

namespace hmi {

void OrderedStream::write(Buffers buffers, ClientStream::TransferHandler then) {
    writes.push_back({std::move(buffers), 0, 0, std::move(then)});
    if (writes.size() == 1)
        begin();
}

/// An operation that is destroyed instead of being completed takes with it what waits behind it, and
/// by that keeps the stream alive.
struct OrderedStream::Running {
    explicit Running(OrderedStream* stream) : stream(stream) {}
    ~Running() {
        if (stream)
            const auto dropped = std::exchange(stream->writes, {});
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    OrderedStream* stream;
};

void OrderedStream::begin() {
    const Write& first = writes.front();
    stream.async_write_some(std::span(first.buffers).subspan(first.next),
                            [running = std::make_shared<Running>(this)](Error error,
                                                                        std::size_t size) {
                                std::exchange(running->stream, nullptr)->onWritten(error, size);
                            });
}

void OrderedStream::onWritten(Error error, std::size_t size) {
    if (!error && !take(writes.front(), size))
        return begin();
    const Write done = std::move(writes.front());
    writes.pop_front();
    if (!writes.empty())
        begin();
    done.then(error, done.written);
}

/// True when nothing is left of it.
bool OrderedStream::take(Write& write, std::size_t size) {
    write.written += size;
    for (; write.next < write.buffers.size(); ++write.next) {
        auto& buffer = write.buffers[write.next];
        if (size < buffer.size()) {
            buffer += size;
            return false;
        }
        size -= buffer.size();
    }
    return true;
}

}  // namespace hmi
