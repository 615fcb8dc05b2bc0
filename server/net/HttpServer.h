#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <boost/asio/io_context.hpp>

#include "server/http/Dispatcher.h"
#include "server/net/StreamHub.h"
#include "server/users/AccessControl.h"

namespace hmi {

/// Listens on one address and serves HTTP/1.1 and the stream.
class HttpServer {
public:
    struct Settings {
        std::string address;
        std::uint16_t port;  ///< 0: any free one
        std::filesystem::path certificate;
        std::filesystem::path key;
        std::vector<std::string> trustedProxies;
    };
    /// What requests go through.
    struct Parts {
        AccessControl& access;
        Dispatcher& dispatcher;
        StreamHub& hub;
    };
    /// Takes the port, but no connection yet. Throws StartError.
    HttpServer(boost::asio::io_context& io, const Settings& settings, const Parts& parts);
    ~HttpServer();

    /// "http://127.0.0.1:8080", or the same with https
    std::string url() const;
    void start();
    /// Takes no more connections and ends those that there are, when their request is answered.
    /// The last of them has ended when the I/O thread runs out of work.
    void stop();
    /// Reads the certificate again, for connections from then on.
    void reload();

private:
    class Acceptor;
    std::unique_ptr<Acceptor> acceptor;
};

}  // namespace hmi
