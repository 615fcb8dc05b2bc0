#pragma once

#include <memory>

#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/websocket/stream.hpp>

#include "server/net/ClientStream.h"
#include "server/net/HttpSession.h"
#include "server/net/OrderedStream.h"
#include "server/net/StreamFrames.h"

namespace hmi {

/// A WebSocket client that follows the changes; what it sends is ignored. Owned by its pending
/// operations and the hub; on the I/O thread only.
class StreamSession final : public Connection,
                            public IStreamClient,
                            public std::enable_shared_from_this<StreamSession> {
public:
    StreamSession(ClientStream stream, const boost::asio::ip::address& peer,
                  std::shared_ptr<SessionContext> context);

    void accept(boost::beast::http::request<boost::beast::http::string_body> request,
                StreamWish wanted, AccessControl::Admission admitted);
    void wake() override;
    StreamLines::Position position() const override { return next; }
    Extent extent() const override { return wish.extent(); }
    void disconnect() override;
    void close() override;
    void abort() override { disconnect(); }

private:
    void onAccepted(boost::beast::error_code error);
    /// Ends the stream when its client would not be admitted any more.
    void watchAdmission();
    void end(boost::beast::websocket::close_code why);
    void leave();
    void read();
    void write();

    const std::shared_ptr<SessionContext> context;
    boost::beast::websocket::stream<OrderedStream> stream;
    boost::beast::http::request<boost::beast::http::string_body> request;
    AccessControl::Admission admission;
    boost::asio::steady_timer admissionCheck;
    boost::beast::flat_buffer received;
    StreamWish wish;
    StreamLines::Position next = 0;
    std::uint64_t sequence = 0;  ///< of the lines that this client was sent
    StreamFrames frames;         ///< being written; empty: none
    bool accepted = false;
    bool ending = false;  ///< the hub keeps no lines for it any more, and no message follows
};

}  // namespace hmi
