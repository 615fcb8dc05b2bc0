#include "server/net/HttpServer.h"

#include <algorithm>
#include <chrono>
#include <sstream>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

#include "server/StartError.h"
#include "server/net/FileLimit.h"
#include "server/net/HttpSession.h"
#include "server/net/TlsFiles.h"

namespace hmi {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

/// Lives on the I/O thread.
class HttpServer::Acceptor {
public:
    Acceptor(asio::io_context& io, const tcp::endpoint& endpoint, const Settings& settings,
             const Parts& parts)
        : io(io),
          socket(io),
          retry(io),
          tls(settings.certificate, settings.key),
          context(makeContext(parts, TrustedProxies(settings.trustedProxies))) {
        socket.open(endpoint.protocol());
#ifndef _WIN32
        socket.set_option(tcp::acceptor::reuse_address(true));  // on Windows it means to share it
#endif
        socket.bind(endpoint);
        socket.listen();
    }

    std::string url() const {
        std::ostringstream text;
        text << (tls.isOn() ? "https://" : "http://") << endpoint();
        return text.str();
    }

    void reload() {
        asio::post(io, [this] { tls.reload(); });
    }

    tcp::endpoint endpoint() const {
        return socket.local_endpoint();
    }

    void start() {
        asio::post(io, [this] {
            started = true;
            accept();
        });
    }

    void stop() {
        asio::post(io, [this] {
            started = false;
            socket.close();
            retry.cancel();
            context->connections.closeAll();
        });
    }

private:
    static std::shared_ptr<SessionContext> makeContext(const Parts& parts,
                                                       const TrustedProxies& proxies) {
        const auto isTrusted = [proxies](const asio::ip::address& peer) {
            return proxies.contains(peer);
        };
        return std::make_shared<SessionContext>(
            SessionContext{parts.access, parts.dispatcher, parts.hub, proxies,
                           Connections(limits(), isTrusted)});
    }

    static Connections::Limits limits() {
        Connections::Limits limits;
        constexpr std::size_t others = 128;  // files and pipes that are no connections
        limits.connections = std::min(limits.connections, raiseFileLimit() - others);
        return limits;
    }

    void accept() {
        if (!started || accepting)
            return;
        accepting = true;
        socket.async_accept([this](error_code error, tcp::socket client) {
            accepting = false;
            if (error == asio::error::operation_aborted)
                return;
            if (error)
                return acceptLater();
            accept();  // first: whatever goes wrong with one client, the next one is heard
            serve(std::move(client));
        });
    }

    void serve(tcp::socket client) {
        error_code error;
        const auto peer = client.remote_endpoint(error).address();
        client.set_option(tcp::no_delay(true), error);
        const auto session = std::make_shared<HttpSession>(ClientStream(std::move(client), tls.current()),
                                                           peer, context);
        if (context->connections.makeRoomFor(*session))
            session->start();
    }

    /// The system is short of something, most likely of file handles.
    void acceptLater() {
        accepting = true;
        retry.expires_after(std::chrono::milliseconds(100));
        retry.async_wait([this](error_code) {
            accepting = false;
            accept();
        });
    }

    asio::io_context& io;
    tcp::acceptor socket;
    asio::steady_timer retry;
    TlsFiles tls;
    std::shared_ptr<SessionContext> context;
    bool started = false;
    bool accepting = false;
};

namespace {

tcp::endpoint endpointOf(const std::string& address, std::uint16_t port) {
    error_code error;
    const auto parsed = asio::ip::make_address(address, error);
    if (error)
        throw StartError("--address: " + address + " is not an IP address");
    return {parsed, port};
}

}  // namespace

HttpServer::HttpServer(asio::io_context& io, const Settings& settings, const Parts& parts) {
    const tcp::endpoint endpoint = endpointOf(settings.address, settings.port);
    try {
        acceptor = std::make_unique<Acceptor>(io, endpoint, settings, parts);
    } catch (const boost::system::system_error& error) {
        throw StartError("cannot listen on " + settings.address + " port " +
                         std::to_string(settings.port) + ": " + error.code().message());
    }
}

HttpServer::~HttpServer() = default;

std::string HttpServer::url() const {
    return acceptor->url();
}

void HttpServer::reload() {
    acceptor->reload();
}

void HttpServer::start() {
    acceptor->start();
}

void HttpServer::stop() {
    acceptor->stop();
}

}  // namespace hmi
