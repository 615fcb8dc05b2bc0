#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include <boost/json/value.hpp>

#include "host/Result.h"

namespace hmi {

struct Response {
    unsigned status = 200;
    std::string body;
    std::string contentType = "application/json";
    std::string allow;  ///< of a 405: the methods that there are

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
