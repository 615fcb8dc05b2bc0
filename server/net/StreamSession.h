#pragma once

#include <deque>
#include <memory>

#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/beast/websocket/stream.hpp>

#include "server/net/ClientStream.h"
#include "server/net/HttpSession.h"

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
                StreamTypes types, AccessControl::Admission admitted);
    bool send(StreamLine line) override;
    void disconnect() override;
    void close() override;
    void abort() override { disconnect(); }

private:
    void onAccepted(boost::beast::error_code error);
    /// Ends the stream when its client would not be admitted any more.
    void watchAdmission();
    void end(boost::beast::websocket::close_code why);
    void read();
    void write();

    const std::shared_ptr<SessionContext> context;
    boost::beast::websocket::stream<ClientStream> stream;
    boost::beast::http::request<boost::beast::http::string_body> request;
    AccessControl::Admission admission;
    boost::asio::steady_timer admissionCheck;
    boost::beast::flat_buffer received;
    std::deque<StreamLine> lines;  ///< the first is being written when `writing`
    std::size_t waitingBytes = 0;
    bool accepted = false;
    bool writing = false;
};

}  // namespace hmi
