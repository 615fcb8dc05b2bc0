#include "targetsystem/LocalAddress.h"

#include "targetsystem/FnxHelper.h"

namespace ZrHmiEventLogger {

std::string LocalAddress::get() {
    Lock lock(localAddressMutex);
    if (localAddress.empty())
        localAddress = FnxHelper::readLocalAddress();
    return localAddress;
}

}  // namespace ZrHmiEventLogger
