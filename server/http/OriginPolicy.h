#pragma once

#include <string>

#include "server/http/Request.h"

namespace hmi {

/// Keeps pages of other sites, which the operator's browser may show as well, from using the
/// server through that browser. Immutable.
class OriginPolicy {
public:
    explicit OriginPolicy(std::string address) : address(std::move(address)) {}

    /// False for a host name that is not ours (a foreign name may lead here by a manipulated name
    /// look-up), and for an origin other than the host that the request is for.
    bool allows(const Request& request) const;

private:
    const std::string address;
};

}  // namespace hmi
