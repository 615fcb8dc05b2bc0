#pragma once

#include <cstdint>
#include <string>

#include "server/http/Target.h"

namespace hmi {

enum class Method : std::uint8_t { get, post, put, remove, other };

/// A request as the handlers see it, free of any network type.
struct Request {
    Method method = Method::get;
    Target target;
    std::string host;    ///< the header, empty when there is none
    std::string origin;  ///< likewise
    std::string body;
};

}  // namespace hmi
