#pragma once

#include <string>

#include "platform/Mutex.h"

namespace ZrHmiEventLogger {

/// The address of this device, which completes those of target systems. A router that starts
/// later than we do is found later: it is asked at every look-up until the address is known. Any
/// thread.
class LocalAddress {
public:
    /// Empty as long as there is no router. Waits for the router, which may hang.
    std::string lookUp() EXCLUDES(localAddressMutex);
    /// What has been looked up so far.
    std::string known() const EXCLUDES(localAddressMutex);

private:
    mutable Mutex localAddressMutex;  ///< guards the address; nothing is called under it
    std::string localAddress GUARDED_BY(localAddressMutex);
};

}  // namespace ZrHmiEventLogger
