#pragma once

#include <string>

#include "platform/Mutex.h"

namespace ZrHmiEventLogger {

/// The address of this device, which completes those of target systems. A router that starts
/// later than we do is found later: it is looked up at every use until it is known. Any thread.
class LocalAddress {
public:
    /// Empty as long as there is no router.
    std::string get() EXCLUDES(localAddressMutex);

private:
    Mutex localAddressMutex;  ///< guards the address, and held while it is looked up
    std::string localAddress GUARDED_BY(localAddressMutex);
};

}  // namespace ZrHmiEventLogger
