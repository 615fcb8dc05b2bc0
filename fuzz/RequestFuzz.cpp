/// Bytes of a connection: parsed, checked, admitted and handled as the server does it, but without
/// a network and with no extension loaded.
#include <memory>
#include <string>

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>

#include "fuzz/FuzzedServer.h"
#include "server/Log.h"
#include "server/net/RequestHead.h"

namespace http = boost::beast::http;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static std::unique_ptr<FuzzedServer> server;
    if (!server) {
        hmi::configureLog(hmi::LogLevel::off, hmi::LogFormat::text);
        server = std::make_unique<FuzzedServer>();
    }
    http::request_parser<http::string_body> parser;
    parser.eager(true);
    parser.header_limit(16 << 10);
    parser.body_limit(1 << 20);
    boost::beast::error_code error;
    std::size_t used = 0;
    while (used < size && !error && !parser.is_done()) {
        const std::size_t taken = parser.put(boost::asio::buffer(data + used, size - used), error);
        if (taken == 0)
            break;
        used += taken;
    }
    if (error || !parser.is_done() || hmi::faultOf(parser.get()))
        return 0;
    const std::string target(parser.get().target());
    hmi::Request request = hmi::requestOf(parser.get());
    request.body = std::move(parser.get().body());
    const bool changes = request.method != hmi::Method::get;
    server->serve(std::move(request), target);
    if (changes)
        server.reset();  // each input has the same start
    return 0;
}
