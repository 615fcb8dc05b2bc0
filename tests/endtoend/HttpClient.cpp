#include "endtoend/HttpClient.h"

#include <chrono>
#include <sstream>
#include <stdexcept>
#include <zlib.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <boost/json/parse.hpp>

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using beast::error_code;

namespace {

asio::ip::tcp::endpoint loopback(std::uint16_t port) {
    return {asio::ip::address_v4::loopback(), port};
}

}  // namespace

boost::json::value HttpAnswer::json() const {
    return boost::json::parse(body);
}

HttpAnswer sendRaw(std::uint16_t port, const std::string& bytes) {
    asio::io_context io;
    beast::tcp_stream stream(io);
    stream.connect(loopback(port));
    error_code error;
    asio::write(stream.socket(), asio::buffer(bytes), error);  // cut off, it may still be answered
    beast::flat_buffer buffer;
    http::response_parser<http::string_body> parser;
    parser.body_limit(boost::none);
    stream.expires_after(std::chrono::minutes(1));
    http::async_read(stream, buffer, parser, [&](error_code e, std::size_t) { error = e; });
    io.run();
    return error ? HttpAnswer() : HttpAnswer{parser.get().result_int(), parser.get().body()};
}

std::string exchange(std::uint16_t port, const std::string& bytes, bool endsItsSide) {
    asio::io_context io;
    beast::tcp_stream stream(io);
    stream.connect(loopback(port));
    stream.expires_after(std::chrono::minutes(1));
    std::string received;
    asio::async_write(stream, asio::buffer(bytes), [&](error_code error, std::size_t) {
        if (endsItsSide)
            stream.socket().shutdown(asio::socket_base::shutdown_send, error);
    });
    asio::async_read(stream, asio::dynamic_buffer(received), [](error_code, std::size_t) {});
    io.run();
    return received;
}

std::string unpacked(const std::string& response) {
    http::response_parser<http::string_body> parser;
    parser.body_limit(boost::none);
    parser.eager(true);
    error_code error;
    parser.put(asio::buffer(response), error);
    std::string& packed = parser.get().body();
    std::string plain;
    z_stream stream{};
    inflateInit2(&stream, 15 + 16);
    stream.next_in = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_in = static_cast<uInt>(packed.size());
    int state = Z_OK;
    while (state == Z_OK) {
        Bytef block[65536];
        stream.next_out = block;
        stream.avail_out = sizeof block;
        state = inflate(&stream, Z_NO_FLUSH);
        plain.append(reinterpret_cast<const char*>(block), sizeof block - stream.avail_out);
    }
    inflateEnd(&stream);
    return state == Z_STREAM_END ? plain : "broken: " + plain.substr(0, 100);
}

HttpAnswer sendRequest(std::uint16_t port, const std::string& method, const std::string& target,
                       const std::string& body, const HttpHeaders& headers) {
    http::request<http::string_body> request;
    request.method_string(method);
    request.target(target);
    request.set(http::field::host, "127.0.0.1:" + std::to_string(port));
    for (const auto& [name, value] : headers)
        request.set(name, value);
    request.body() = body;
    request.prepare_payload();
    std::ostringstream bytes;
    bytes << request;
    HttpAnswer answer = sendRaw(port, bytes.str());
    if (answer.status == 0)
        throw std::runtime_error("no answer to " + method + " " + target);
    return answer;
}

std::shared_ptr<void> beginRequest(std::uint16_t port, const std::string& method,
                                   const std::string& target) {
    struct Connection {
        ~Connection() { socket.close(); }  // which resets it; its own end would not
        asio::io_context io;
        asio::ip::tcp::socket socket{io};
    };
    const auto connection = std::make_shared<Connection>();
    connection->socket.connect(loopback(port));
    connection->socket.set_option(asio::socket_base::linger(true, 0));
    asio::write(connection->socket,
                asio::buffer(method + " " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n"));
    return connection;
}

struct StreamClient::Connection {
    asio::io_context io;
    websocket::stream<beast::tcp_stream> stream{io};
    beast::flat_buffer buffer;
};

StreamClient::StreamClient(std::uint16_t port, const HttpHeaders& headers,
                           const std::string& target)
    : connection(std::make_unique<Connection>()) {
    auto& stream = connection->stream;
    stream.next_layer().connect(loopback(port));
    stream.set_option(websocket::stream_base::decorator([&](websocket::request_type& request) {
        for (const auto& [name, value] : headers)
            request.set(name, value);
    }));
    stream.handshake("127.0.0.1:" + std::to_string(port), target);
}

StreamClient::~StreamClient() = default;

std::optional<boost::json::value> StreamClient::next() {
    auto& [io, stream, buffer] = *connection;
    error_code ended;
    buffer.clear();
    stream.next_layer().expires_after(std::chrono::seconds(20));
    stream.async_read(buffer, [&ended](error_code error, std::size_t) { ended = error; });
    io.restart();
    io.run();
    if (ended)
        return std::nullopt;
    return boost::json::parse(beast::buffers_to_string(buffer.data()));
}
