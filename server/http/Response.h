#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <boost/json/value.hpp>

#include "host/Result.h"
#include "server/lanes/Lane.h"

namespace hmi {

/// Makes a long body part by part; an empty part is the end. Called by one thread at a time, when
/// the client has taken the part before.
using BodyParts = std::function<std::string()>;

struct Response {
    unsigned status = 200;
    std::string body;
    BodyParts parts;       ///< instead of a body
    std::size_t held = 0;  ///< bytes that the parts keep alive
    Lane partsLane = Lane::local;  ///< where they are made
    std::string contentType = "application/json";
    bool keepable = false;  ///< a client may keep it, and ask whether it still holds
    bool audited = false;   ///< who did what has been recorded by the handler itself
    /// Further ones, each name at most once.
    std::vector<std::pair<std::string, std::string>> headers;

    static Response json(const boost::json::value& value, unsigned status = 200);
    /// `result`: the extension's code, when it gave one.
    static Response error(unsigned status, std::string_view text,
                          std::optional<ZrHmiSrv::ErrorValue> result = {});
};

/// Ends the handling of a request with an error response; nothing has been changed.
class RequestError : public std::runtime_error {
public:
    RequestError(unsigned status, const std::string& text)
        : std::runtime_error(text), status(status) {}
    const unsigned status;
};

}  // namespace hmi
