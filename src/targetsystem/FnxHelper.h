#pragma once

#include <string>
#include <string_view>

namespace ZrHmiEventLogger {

/// Stateless helpers around the device protocol. Any thread.
class FnxHelper {
public:
    /// The address of this device, "a.b.c.d.e.f"; empty when there is no router.
    static std::string readLocalAddress();
    /// Whether a configured address means nothing without the one of this device.
    static bool needsLocalAddress(std::string_view address);
    /// A configured address in full: empty or "local" is this device, six numbers stand as they
    /// are, fewer are completed from the front of the local address. Any other text is left to
    /// the proxy to refuse.
    static std::string resolveAddress(std::string_view address, std::string_view localAddress);
};

}  // namespace ZrHmiEventLogger
