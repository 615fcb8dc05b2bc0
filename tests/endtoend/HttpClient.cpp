#include "endtoend/HttpClient.h"

#include <chrono>
#include <stdexcept>

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <boost/json/parse.hpp>

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using asio::ip::tcp;
using beast::error_code;

namespace {

constexpr auto patience = std::chrono::seconds(60);

tcp::endpoint loopback(std::uint16_t port) {
    return {asio::ip::address_v4::loopback(), port};
}

void readAnswer(asio::io_context& io, beast::tcp_stream& stream,
                http::response_parser<http::string_body>& parser, error_code& error) {
    beast::flat_buffer buffer;
    parser.body_limit(boost::none);
    stream.expires_after(patience);
    http::async_read(stream, buffer, parser, [&](error_code e, std::size_t) { error = e; });
    io.restart();
    io.run();
}

}  // namespace

boost::json::value HttpAnswer::json() const {
    boost::json::error_code error;
    boost::json::value value = boost::json::parse(body, error);
    return error ? boost::json::value() : value;
}

HttpAnswer sendRequest(std::uint16_t port, const std::string& method, const std::string& target,
                       const std::string& body, const HttpHeaders& headers) {
    asio::io_context io;
    beast::tcp_stream stream(io);
    stream.connect(loopback(port));
    http::request<http::string_body> request;
    request.method_string(method);
    request.target(target);
    request.version(11);
    request.set(http::field::host, "127.0.0.1:" + std::to_string(port));
    for (const auto& [name, value] : headers)
        request.set(name, value);
    request.body() = body;
    request.prepare_payload();
    error_code error;
    http::write(stream, request, error);  // a refused body may fail here, and still be answered
    http::response_parser<http::string_body> parser;
    readAnswer(io, stream, parser, error);
    if (error)
        throw std::runtime_error(method + " " + target + ": " + error.message());
    return {parser.get().result_int(), parser.get().body(),
            std::string(parser.get()[http::field::content_type])};
}

unsigned sendRaw(std::uint16_t port, const std::string& bytes) {
    asio::io_context io;
    beast::tcp_stream stream(io);
    stream.connect(loopback(port));
    error_code error;
    asio::write(stream.socket(), asio::buffer(bytes), error);
    http::response_parser<http::string_body> parser;
    readAnswer(io, stream, parser, error);
    return error ? 0 : parser.get().result_int();
}

struct StreamClient::Connection {
    asio::io_context io;
    websocket::stream<beast::tcp_stream> stream{io};
    beast::flat_buffer buffer;
};

StreamClient::StreamClient(std::uint16_t port, const HttpHeaders& headers)
    : connection(std::make_unique<Connection>()) {
    auto& stream = connection->stream;
    stream.next_layer().connect(loopback(port));
    stream.set_option(websocket::stream_base::decorator([&](websocket::request_type& request) {
        for (const auto& [name, value] : headers)
            request.set(name, value);
    }));
    stream.handshake("127.0.0.1:" + std::to_string(port), "/api/stream");
}

StreamClient::~StreamClient() = default;

std::optional<boost::json::value> StreamClient::next() {
    std::optional<error_code> ended;
    connection->buffer.clear();
    connection->stream.async_read(connection->buffer,
                                  [&](error_code error, std::size_t) { ended = error; });
    connection->io.restart();
    connection->io.run_for(std::chrono::seconds(20));
    if (!ended) {
        connection->stream.next_layer().cancel();
        connection->io.restart();
        connection->io.run();
        return std::nullopt;
    }
    if (*ended)
        return std::nullopt;
    return boost::json::parse(beast::buffers_to_string(connection->buffer.data()));
}
