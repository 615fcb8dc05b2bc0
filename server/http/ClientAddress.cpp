#include "server/http/ClientAddress.h"

#include <algorithm>

#include "server/StartError.h"
#include "server/json/Utf8.h"

namespace hmi {

namespace ip = boost::asio::ip;

namespace {

ip::address unmapped(const ip::address& address) {
    if (address.is_v6() && address.to_v6().is_v4_mapped())
        return ip::make_address_v4(ip::v4_mapped, address.to_v6());
    return address;
}

std::string_view trimmed(std::string_view text) {
    const auto begin = std::min(text.find_first_not_of(" \t"), text.size());
    return text.substr(begin, text.find_last_not_of(" \t") + 1 - begin);
}

/// "10.0.0.1", "10.0.0.1:80", "2001:db8::1" or "[2001:db8::1]:80"
std::optional<ip::address> addressOf(std::string_view text) {
    if (text.starts_with('['))
        text = text.substr(1, text.find(']') - 1);
    else if (std::count(text.begin(), text.end(), ':') == 1)
        text = text.substr(0, text.find(':'));
    boost::system::error_code error;
    const auto address = ip::make_address(std::string(text), error);
    return error ? std::nullopt : std::optional(unmapped(address));
}

}  // namespace

ip::address networkOf(const ip::address& address) {
    const ip::address plain = unmapped(address);
    if (plain.is_v4())
        return plain;
    ip::address_v6::bytes_type bytes = plain.to_v6().to_bytes();
    std::fill(bytes.begin() + 8, bytes.end(), 0);
    return ip::address_v6(bytes);
}

std::string networkOf(const std::string& text) {
    boost::system::error_code error;
    const auto address = ip::make_address(text, error);
    return error ? text : networkOf(address).to_string();
}

TrustedProxies::TrustedProxies(const std::vector<std::string>& addresses) {
    for (const std::string& text : addresses) {
        boost::system::error_code error;
        const auto address = ip::make_address(text, error);
        if (error)
            throw StartError("--trusted-proxy: " + text + " is not an IP address");
        proxies.insert(unmapped(address));
    }
}

bool TrustedProxies::contains(const ip::address& address) const {
    return !proxies.empty() && proxies.contains(unmapped(address));
}

ip::address TrustedProxies::clientOf(const ip::address& peer, std::string_view forwarded) const {
    ip::address client = peer;
    while (contains(client) && !forwarded.empty()) {
        const auto comma = forwarded.rfind(',');
        const bool isFirst = comma == std::string_view::npos;
        const auto before = addressOf(trimmed(forwarded.substr(isFirst ? 0 : comma + 1)));
        if (!before)
            break;
        client = *before;
        forwarded = forwarded.substr(0, isFirst ? 0 : comma);
    }
    return client;
}

std::optional<bool> TrustedProxies::isUnderTls(const ip::address& peer,
                                               std::string_view schemes) const {
    if (!contains(peer) || schemes.empty())
        return std::nullopt;
    return toLowerAscii(trimmed(schemes.substr(0, schemes.find(',')))) == "https";
}

}  // namespace hmi
