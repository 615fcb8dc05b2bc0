#pragma once

#include <memory>
#include <optional>

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include "server/http/ClientAddress.h"
#include "server/http/Dispatcher.h"
#include "server/net/Answer.h"
#include "server/net/ClientStream.h"
#include "server/net/Connection.h"
#include "server/net/StreamHub.h"
#include "server/users/AccessControl.h"

namespace hmi {

/// What the sessions of a server share.
struct SessionContext {
    AccessControl& access;
    Dispatcher& dispatcher;
    StreamHub& hub;
    const TrustedProxies proxies;
    Connections connections;

    static std::shared_ptr<Connections> connectionsOf(const std::shared_ptr<SessionContext>& of) {
        return {of, &of->connections};
    }
};

/// A client's connection: reads a request, has it answered, and so on until either side ends it.
/// Owned by its pending operations; on the I/O thread only.
class HttpSession final : public Connection, public std::enable_shared_from_this<HttpSession> {
public:
    HttpSession(ClientStream stream, const boost::asio::ip::address& peer,
                std::shared_ptr<SessionContext> context);

    void start();
    void close() override;
    void abort() override;

private:
    using Error = boost::beast::error_code;
    using Parser = boost::beast::http::request_parser<boost::beast::http::string_body>;

    void readRequest();
    void readHeader();
    void onHeader(Error error);
    void readBody();
    void sendContinue();
    void onBody(Error error);
    void onReadFailed(Error error);
    void serve();
    /// Whoever lets go last, on whatever thread, the session ends on its own; and so does the
    /// connection of a request that has got no answer by then.
    std::shared_ptr<HttpSession> sharedWithWorkers();
    std::shared_ptr<const Presence> watchClient();
    void follow();
    void accept(const Request& admitted, std::optional<Response> refusal);
    std::optional<Response> whyNotToFollow(const std::string& user,
                                           std::optional<StreamWish>& wish) const;

    void refuse(Response reply);
    void send(Response reply);
    void write();
    void onWritten(Error error);
    void fetchPart();
    void supply(std::optional<std::string> part);
    void onSent();
    void linger();
    void expireAfter(std::chrono::seconds time) { stream.next_layer().expires_after(time); }

    const std::shared_ptr<SessionContext> context;
    ClientStream stream;
    const ClientStream::executor_type executor;
    boost::beast::flat_buffer buffer;
    std::optional<Parser> parser;
    // Of the request that is being received or served, as its head tells.
    Request request;
    std::string target;
    Manner manner;
    boost::asio::ip::address client;  ///< the peer, or whom a proxy names
    bool upgrades = false;            ///< to follow the stream

    std::uint64_t served = 0;  ///< requests, with the one that is being served
    std::optional<Answer> answer;
    bool handedOver = false;  ///< the stream has gone to another session
    bool closing = false;     ///< no request after this one
};

}  // namespace hmi
