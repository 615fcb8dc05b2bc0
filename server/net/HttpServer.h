#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <boost/asio/io_context.hpp>

#include "server/http/Dispatcher.h"
#include "server/net/StreamHub.h"

namespace hmi {

/// Listens on one address and serves HTTP/1.1 and the stream.
class HttpServer {
public:
    /// Takes the port (0: any free one), but no connection yet. Throws StartError.
    HttpServer(boost::asio::io_context& io, const std::string& address, std::uint16_t port,
               Dispatcher& dispatcher, StreamHub& hub);
    ~HttpServer();

    /// "http://127.0.0.1:8080"
    std::string url() const;
    void start();
    /// Takes no more connections and ends those that there are, when their request is answered.
    /// The last of them has ended when the I/O thread runs out of work.
    void stop();

private:
    class Acceptor;
    std::unique_ptr<Acceptor> acceptor;
};

}  // namespace hmi
