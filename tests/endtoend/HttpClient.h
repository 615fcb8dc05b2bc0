#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <boost/json/value.hpp>

struct HttpAnswer {
    unsigned status = 0;
    std::string body;

    /// Throws when the body is no JSON.
    boost::json::value json() const;
};

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

/// The body of the response in these bytes, which is packed.
std::string unpacked(const std::string& response);

/// Sends one request on a connection of its own. Throws when there is no answer within a minute.
HttpAnswer sendRequest(std::uint16_t port, const std::string& method, const std::string& target,
                       const std::string& body = {}, const HttpHeaders& headers = {});

/// Sends bytes as they are on a connection of their own; status 0 when there is no answer.
HttpAnswer sendRaw(std::uint16_t port, const std::string& bytes);

/// All that the server answers to these bytes until it closes the connection, for a minute at most.
/// `endsItsSide`: it is told that nothing more will be sent.
std::string exchange(std::uint16_t port, const std::string& bytes, bool endsItsSide = false);

/// Sends a request on a connection of its own, which is broken when the result goes.
std::shared_ptr<void> beginRequest(std::uint16_t port, const std::string& method,
                                   const std::string& target);

/// Follows the stream of the server.
class StreamClient {
public:
    explicit StreamClient(std::uint16_t port, const HttpHeaders& headers = {},
                          const std::string& target = "/api/stream");
    ~StreamClient();

    /// The next line; nothing when none comes within 20 seconds or the server closes.
    std::optional<boost::json::value> next();

private:
    struct Connection;
    std::unique_ptr<Connection> connection;
};
