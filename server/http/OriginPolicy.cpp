#include "server/http/OriginPolicy.h"

#include <algorithm>

#include "server/json/Utf8.h"

namespace hmi {

namespace {

bool isDigitOrDot(char c) {
    return (c >= '0' && c <= '9') || c == '.';
}

/// Numbers lead to no foreign name. A bracket starts an address of IP version 6.
bool isNumeric(std::string_view name) {
    return name.starts_with('[') || std::all_of(name.begin(), name.end(), isDigitOrDot);
}

std::string_view withoutPort(std::string_view host) {
    const auto colon = host.rfind(':');
    const auto bracket = host.rfind(']');
    if (colon == std::string_view::npos || (bracket != std::string_view::npos && colon < bracket))
        return host;
    return host.substr(0, colon);
}

}  // namespace

bool OriginPolicy::allows(const Request& request) const {
    const std::string host = toLowerAscii(request.host);
    const std::string_view name = withoutPort(host);
    if (!isNumeric(name) && name != "localhost" && name != toLowerAscii(address))
        return false;
    return request.origin.empty() || toLowerAscii(request.origin) == "http://" + host;
}

}  // namespace hmi
