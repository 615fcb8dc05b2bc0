#include "server/http/OriginPolicy.h"

#include <boost/url/authority_view.hpp>
#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

#include "server/StartError.h"
#include "server/json/Utf8.h"

namespace hmi {

namespace urls = boost::urls;

namespace {

std::string hostOf(const urls::authority_view& authority) {
    return toLowerAscii(authority.host());
}

bool isAddress(const urls::authority_view& authority) {
    return authority.host_type() == urls::host_type::ipv4 ||
           authority.host_type() == urls::host_type::ipv6;
}

std::string portOf(const urls::authority_view& authority, std::string_view scheme) {
    if (authority.port().empty())
        return scheme == "https" ? "443" : "80";
    return authority.port();
}

}  // namespace

OriginPolicy::OriginPolicy(const std::vector<std::string>& given) : names{"localhost"} {
    for (const std::string& name : given) {
        const auto parsed = urls::parse_authority(name);
        if (!parsed || parsed->has_userinfo() || parsed->has_port() || parsed->host().empty())
            throw StartError("--allow-host: " + name +
                             " is not a host name alone, without scheme and port");
        names.insert(hostOf(*parsed));
    }
}

bool OriginPolicy::allows(const Request& request) const {
    const auto host = urls::parse_authority(request.host);
    if (!host || host->has_userinfo())
        return false;
    if (!isAddress(*host) && !names.contains(hostOf(*host)))
        return false;
    if (request.origin.empty())
        return true;
    const auto origin = urls::parse_uri(request.origin);
    if (!origin || (origin->scheme() != "http" && origin->scheme() != "https"))
        return false;
    const urls::authority_view from = origin->authority();
    const std::string scheme = origin->scheme();
    if (from.has_userinfo() || !origin->encoded_resource().empty())
        return false;
    if (hostOf(from) == hostOf(*host) && portOf(from, scheme) == portOf(*host, scheme))
        return true;
    return hostOf(from) != "localhost" && names.contains(hostOf(from));
}

}  // namespace hmi
