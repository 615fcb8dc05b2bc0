#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <boost/asio/ip/address.hpp>

namespace hmi {

/// What counts as one client where clients are counted: an address, of IP version 6 its /64, in
/// which a client can take any. However an address of version 4 is written, it is the same.
boost::asio::ip::address networkOf(const boost::asio::ip::address& address);
/// The same of a text; one that is no address stands for itself.
std::string networkOf(const std::string& address);

/// Proxies in front of this server that tell truthfully whom they speak for. Immutable.
class TrustedProxies {
public:
    /// Throws StartError for what is no address.
    explicit TrustedProxies(const std::vector<std::string>& addresses);

    bool contains(const boost::asio::ip::address& address) const;
    /// The client behind `peer`: of the addresses that a chain of proxies has noted, one behind
    /// the other, the last that is no proxy's. `forwarded`: "client, proxy, ..."
    boost::asio::ip::address clientOf(const boost::asio::ip::address& peer,
                                      std::string_view forwarded) const;
    /// Whether the client of `peer` has come by TLS. Nothing when that is no proxy, or says
    /// nothing. `schemes`: "https", or a chain's, the client's first.
    std::optional<bool> isUnderTls(const boost::asio::ip::address& peer,
                                   std::string_view schemes) const;

private:
    std::set<boost::asio::ip::address> proxies;
};

}  // namespace hmi
