#pragma once

#include <set>
#include <string>
#include <vector>

#include "server/http/Request.h"

namespace hmi {

/// Keeps pages of other sites, which the operator's browser may show as well, from using the
/// server through that browser. Immutable.
class OriginPolicy {
public:
    /// The names by which the server is known, besides `localhost` and addresses. Throws StartError
    /// for what is no name alone.
    explicit OriginPolicy(const std::vector<std::string>& names);

    /// False for a host name that is not ours (a foreign name may lead here by a manipulated name
    /// look-up), and for an origin that is neither the host that the request is for nor one of
    /// the names: in front of those a proxy may stand, with another port.
    bool allows(const Request& request) const;

private:
    std::set<std::string> names;
};

}  // namespace hmi
